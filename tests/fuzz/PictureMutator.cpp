#include <QtEndian>

#include <cstdint>

#include <zlib.h>

extern "C" size_t LLVMFuzzerMutate(uint8_t *bytes, size_t size, size_t maxSize);

/// Makes the check sums of a PNG file's chunks right again. Readers stop at a wrong one: what lies behind it would
/// never be seen.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *bytes, size_t size, size_t maxSize, unsigned /*seed*/)
{
    size = LLVMFuzzerMutate(bytes, size, maxSize);
    const bool isPng = size >= 8 && qFromBigEndian<quint32>(bytes) == 0x89504e47;
    for (size_t at = 8; isPng && at + 12 <= size;) {
        const size_t length = qFromBigEndian<quint32>(bytes + at);
        if (length > size - at - 12)
            break;
        qToBigEndian(quint32(crc32(0, bytes + at + 4, uInt(length + 4))), bytes + at + 8 + length);
        at += length + 12;
    }
    return size;
}
