#include "LargeMemory.h"

#include <cstdlib>
#include <new>

#include <sys/mman.h>

namespace hazelmark {

namespace {
constexpr std::size_t kLargePage = std::size_t(2) << 20;
constexpr std::size_t kCacheLine = 64;
} // namespace

void *allocateLarge(std::size_t bytes)
{
    const std::size_t alignment = bytes >= 2 * kLargePage ? kLargePage : kCacheLine;
    const std::size_t rounded = (bytes + alignment - 1) / alignment * alignment;
    void *const memory = rounded >= bytes ? std::aligned_alloc(alignment, rounded) : nullptr;
    if (!memory && bytes > 0)
        throw std::bad_alloc();
    if (alignment == kLargePage)
        madvise(memory, rounded, MADV_HUGEPAGE); // a hint; without it all works the same
    return memory;
}

void freeLarge(void *memory)
{
    std::free(memory);
}

QImage makeLargeBitmap(QSize size, QImage::Format format)
try {
    if (size.isEmpty())
        return {};
    const std::size_t lineBits = std::size_t(size.width()) * QImage::toPixelFormat(format).bitsPerPixel();
    const std::size_t lineBytes = (lineBits + 31) / 32 * 4;
    auto *const memory = static_cast<uchar *>(allocateLarge(lineBytes * std::size_t(size.height())));
    QImage bitmap(memory, size.width(), size.height(), qsizetype(lineBytes), format, freeLarge, memory);
    if (bitmap.isNull())
        freeLarge(memory);
    return bitmap;
} catch (const std::bad_alloc &) {
    return {};
}

QImage makeBitmapIn(QImage room, QSize size, QImage::Format format)
{
    const bool fits = room.size() == size && room.depth() == int(QImage::toPixelFormat(format).bitsPerPixel());
    if (fits && room.isDetached() && room.reinterpretAsFormat(format))
        return room;
    return makeLargeBitmap(size, format);
}

} // namespace hazelmark
