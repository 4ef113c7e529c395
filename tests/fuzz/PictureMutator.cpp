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

/// The contents of the chunks of a PNG file.
std::vector<Part> chunksOf(const uint8_t *bytes, size_t size)
{
    std::vector<Part> chunks;
    if (size < 8 || qFromBigEndian<quint32>(bytes) != 0x89504e47)
        return chunks;
    for (size_t at = 8; at + 12 <= size;) {
        const size_t length = qFromBigEndian<quint32>(bytes + at);
        if (length > size - at - 12)
            break;
        if (length > 0)
            chunks.push_back({at + 8, length});
        at += length + 12;
    }
    return chunks;
}

} // namespace

/// Changes one chunk of a PNG file and leaves its frame alone, most of the time. Readers stop at a wrong check sum:
/// what lies behind it would never be seen.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t maxSize, unsigned seed)
{
    std::minstd_rand random(seed);
    const std::vector<Part> chunks = chunksOf(bytes, size);
    if (chunks.empty() || random() % 4 == 0) {
        size = LLVMFuzzerMutate(bytes, size, maxSize);
    } else {
        const Part &chunk = chunks[random() % chunks.size()];
        LLVMFuzzerMutate(bytes + chunk.from, chunk.size, chunk.size);
    }
    for (const auto &[from, length] : chunksOf(bytes, size))
        qToBigEndian(quint32(crc32(0, bytes + from - 4, uInt(length + 4))), bytes + from + length);
    return size;
}
