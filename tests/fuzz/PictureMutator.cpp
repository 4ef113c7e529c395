#include <QByteArray>
#include <QtEndian>

#include <cstdint>
#include <random>
#include <vector>

#include <zlib.h>

extern "C" size_t LLVMFuzzerMutate(uint8_t *bytes, size_t size, size_t maxSize);

namespace {

struct Part
{
    size_t from;
    size_t size;
};

bool isPng(const uint8_t *bytes, size_t size)
{
    return size > 16 && qFromBigEndian<quint32>(bytes) == 0x89504e47;
}

/// The contents of the chunks of a PNG file or of the segments of a JPEG file.
std::vector<Part> partsOf(const uint8_t *bytes, size_t size)
{
    std::vector<Part> parts;
    const bool png = isPng(bytes, size);
    if (!png && (size < 8 || qFromBigEndian<quint16>(bytes) != 0xffd8))
        return parts;
    for (size_t at = png ? 8 : 2; at + 8 < size;) {
        const size_t content = at + (png ? 8 : 4);
        const size_t length = png ? qFromBigEndian<quint32>(bytes + at) : qFromBigEndian<quint16>(bytes + at + 2);
        const size_t contentSize = png ? length : length - std::min<size_t>(length, 2);
        if (contentSize > size - content)
            break;
        if (contentSize > 0)
            parts.push_back({content, contentSize});
        at = content + contentSize + (png ? 4 : 0);
    }
    return parts;
}

/// Readers stop at a wrong check sum: what lies behind it would never be seen.
void correctChecksums(uint8_t *bytes, size_t size)
{
    for (const Part &part : partsOf(bytes, size)) {
        const size_t end = part.from + part.size;
        if (end + 4 <= size)
            qToBigEndian(quint32(crc32(0, bytes + part.from - 4, uInt(part.size + 4))), bytes + end);
    }
}

} // namespace

/// Changes one part of a picture file and leaves its frame alone, most of the time.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t maxSize, unsigned seed)
{
    std::minstd_rand random(seed);
    const std::vector<Part> parts = partsOf(bytes, size);
    if (parts.empty() || random() % 4 == 0) {
        size = LLVMFuzzerMutate(bytes, size, maxSize);
    } else {
        const Part part = parts[random() % parts.size()];
        std::vector<uint8_t> content(bytes + part.from, bytes + part.from + part.size);
        LLVMFuzzerMutate(content.data(), part.size, part.size);
        std::copy(content.begin(), content.end(), bytes + part.from);
    }
    if (isPng(bytes, size))
        correctChecksums(bytes, size);
    return size;
}
