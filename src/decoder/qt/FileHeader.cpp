#include "FileHeader.h"

#include "ZlibStream.h"

#include <QtEndian>

#include <algorithm>
#include <limits>

namespace hazelmark {

namespace {

/// Little-endian fields; 0 beyond the end, so that a cut-off header reads as an empty picture.
class Fields
{
public:
    explicit Fields(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }
    qsizetype size() const { return m_bytes.size(); }
    const QByteArray &bytes() const { return m_bytes; }
    quint8 at8(qsizetype offset) const { return quint8(offset < m_bytes.size() ? m_bytes[offset] : 0); }
    quint16 at16(qsizetype offset) const { return quint16(at8(offset) | at8(offset + 1) << 8); }
    quint32 at24(qsizetype offset) const { return at16(offset) | quint32(at8(offset + 2)) << 16; }
    quint32 at32(qsizetype offset) const { return at16(offset) | quint32(at16(offset + 2)) << 16; }
    qint32 signed32(qsizetype offset) const { return qint32(at32(offset)); }

private:
    QByteArray m_bytes;
};

qint64 bmpStride(qint64 width, int bitsPerPixel)
{
    return (width * bitsPerPixel + 31) / 32 * 4;
}

/// Whether the file ends before `rows` rows of `stride` bytes from `offset`. (No product: a hostile header may state
/// any two numbers.)
bool areRowsCutOff(const SourceFile &source, qint64 offset, qint64 stride, qint64 rows)
{
    return offset > source.size() || (rows > 0 && stride > (source.size() - offset) / rows);
}

FileHeader readBmp(SourceFile &source)
{
    constexpr quint32 kOldHeaderSize = 12;
    constexpr quint32 kV5HeaderSize = 124;
    constexpr quint32 kEmbeddedProfile = 0x4d424544; // "MBED"
    constexpr int kFileHeaderSize = 14;
    enum Compression { Plain = 0, Run8 = 1, Run4 = 2, BitFields = 3, AlphaBitFields = 6 };

    const Fields fields(source.bytesAt(0, 256));
    FileHeader header;
    const quint32 headerSize = fields.at32(14);
    const qint64 dataOffset = fields.at32(10);
    if (headerSize == kOldHeaderSize) {
        const qint64 stride = bmpStride(fields.at16(18), fields.at16(24));
        header.isCutOff = areRowsCutOff(source, dataOffset, stride, fields.at16(20));
        return header;
    }
    constexpr qint64 kMaxSide = std::numeric_limits<int>::max();
    const qint64 width = fields.signed32(18);
    const qint64 height = std::abs(qint64(fields.signed32(22)));
    if (width > 0 && width <= kMaxSide && height > 0 && height <= kMaxSide)
        header.frames = {QSize(int(width), int(height))};
    const quint32 compression = fields.at32(30);
    if (compression == Run8 || compression == Run4)
        header.isCutOff = dataOffset + qint64(fields.at32(34)) > source.size(); // the size is a must for these
    else if (compression == Plain || compression == BitFields || compression == AlphaBitFields)
        header.isCutOff =
            areRowsCutOff(source, dataOffset, bmpStride(std::max<qint64>(width, 0), fields.at16(28)), height);
    if (fields.signed32(38) > 0 && fields.signed32(42) > 0)
        header.dpi = QSizeF(fields.signed32(38), fields.signed32(42)) * kMetresPerInch;
    if (headerSize >= kV5HeaderSize && fields.at32(70) == kEmbeddedProfile) {
        const qint64 size = fields.at32(130);
        const QByteArray profile =
            source.bytesAt(kFileHeaderSize + qint64(fields.at32(126)), std::min<qint64>(size, kMaxIccProfileSize));
        if (profile.size() == size)
            header.iccProfile = profile;
    }
    return header;
}

/// A directory of pictures, each either a PNG file or a bitmap whose height counts its mask too.
FileHeader readIcon(SourceFile &source)
{
    constexpr qint64 kEntrySize = 16;
    constexpr qint64 kDirectoryOffset = 6;
    const int count = Fields(source.bytesAt(4, 2)).at16(0);
    const Fields directory(source.bytesAt(kDirectoryOffset, count * kEntrySize));
    FileHeader header;
    header.hasAlpha = true;
    for (int index = 0; index < count && (index + 1) * kEntrySize <= directory.size(); ++index) {
        const qsizetype entry = index * kEntrySize;
        const qint64 offset = directory.at32(entry + 12);
        header.isCutOff = header.isCutOff || offset + directory.at32(entry + 8) > source.size();
        const Fields picture(source.bytesAt(offset, 32));
        if (picture.bytes().startsWith("\x89PNG")) {
            header.frames.emplace_back(qFromBigEndian(picture.signed32(16)), qFromBigEndian(picture.signed32(20)));
        } else if (picture.size() >= 12) {
            header.frames.emplace_back(picture.signed32(4), std::abs(picture.signed32(8) / 2));
        }
    }
    std::erase_if(header.frames, [](QSize size) { return size.isEmpty(); });
    header.isOfAnotherKind = header.frames.empty();
    return header;
}

FileHeader readWebP(SourceFile &source)
{
    constexpr qint64 kFirstChunk = 12;
    constexpr quint8 kAlphaFlag = 0x10;
    FileHeader header;
    header.hasAlpha = false;
    const qint64 end = qint64(Fields(source.head()).at32(4)) + 8;
    header.isCutOff = end > source.size();
    QSize canvas;
    size_t frameCount = 0;
    size_t chunkCount = 0;
    for (qint64 offset = kFirstChunk; offset + 8 <= std::min(end, source.size()) && chunkCount < kMaxFrames;
         ++chunkCount) {
        const Fields chunk(source.bytesAt(offset, 32));
        const QByteArray type = chunk.bytes().left(4);
        const qint64 size = chunk.at32(4);
        if (type == "VP8X") {
            header.hasAlpha = (chunk.at8(8) & kAlphaFlag) != 0;
            canvas = QSize(int(chunk.at24(12)) + 1, int(chunk.at24(15)) + 1);
        } else if (type == "VP8L" && offset == kFirstChunk) {
            header.hasAlpha = (chunk.at32(9) >> 28 & 1) != 0; // after two 14-bit sides
        } else if (type == "ANMF") {
            ++frameCount;
            header.hasAlpha = true; // a frame need not cover the canvas
        } else if (type == "ICCP" && size <= kMaxIccProfileSize) {
            const QByteArray profile = source.bytesAt(offset + 8, size);
            if (profile.size() == size)
                header.iccProfile = profile;
        }
        offset += 8 + size + size % 2;
    }
    if (!canvas.isEmpty())
        header.frames.assign(std::max<size_t>(frameCount, 1), canvas);
    return header;
}

} // namespace

FileHeader readFileHeader(SourceFile &source, const QByteArray &format)
{
    if (format == "bmp")
        return readBmp(source);
    if (format == "ico" || format == "cur")
        return readIcon(source);
    if (format == "webp")
        return readWebP(source);
    return {};
}

} // namespace hazelmark
