#include "ColorProfile.h"
#include "PictureEncoders.h"
#include "PixelRows.h"

#include <QtEndian>

#include <cmath>
#include <limits>
#include <vector>

namespace hazelmark {

namespace {

constexpr quint32 kFileHeaderSize = 14;
constexpr quint32 kInfoHeaderSize = 40;
constexpr quint16 kBitsPerPixel = 24;
constexpr qsizetype kWriteSize = 1024 * 1024;

qint32 perMetre(double dpi)
{
    const double value = std::round(dpi / kMetresPerInch);
    return value >= 1 && value <= std::numeric_limits<qint32>::max() ? qint32(value) : 0;
}

QByteArray headers(QSize size, quint32 pixelBytes, const std::optional<QSizeF> &dpi)
{
    QByteArray bytes(kFileHeaderSize + kInfoHeaderSize, '\0');
    const auto put16 = [&bytes](int offset, quint16 value) { qToLittleEndian(value, bytes.data() + offset); };
    const auto put32 = [&bytes](int offset, quint32 value) { qToLittleEndian(value, bytes.data() + offset); };
    bytes[0] = 'B';
    bytes[1] = 'M';
    put32(2, kFileHeaderSize + kInfoHeaderSize + pixelBytes);
    put32(10, kFileHeaderSize + kInfoHeaderSize);
    put32(14, kInfoHeaderSize);
    put32(18, quint32(size.width()));
    put32(22, quint32(size.height())); // positive: the last row comes first
    put16(26, 1);                      // planes
    put16(28, kBitsPerPixel);
    put32(34, pixelBytes);
    if (dpi) {
        put32(38, quint32(perMetre(dpi->width())));
        put32(42, quint32(perMetre(dpi->height())));
    }
    return bytes;
}

} // namespace

Outcome<Done> encodeBmp(const QImage &original, const EncodeOptions &options, FileSink &sink)
{
    const QImage pixels = convertedToSrgb(original, options.metadata.iccProfile);
    const qsizetype rowSize = (qsizetype(pixels.width()) * 3 + 3) / 4 * 4;
    const qsizetype pixelBytes = rowSize * pixels.height();
    if (pixelBytes > qsizetype(std::numeric_limits<quint32>::max()) - kFileHeaderSize - kInfoHeaderSize)
        return sink.failure(QStringLiteral("a BMP file cannot hold more than 4 GB"));

    const QByteArray header = headers(pixels.size(), quint32(pixelBytes), options.metadata.dpi);
    sink.write(header.constData(), size_t(header.size()));
    const int rowsPerWrite = int(std::clamp<qsizetype>(kWriteSize / rowSize, 1, pixels.height()));
    std::vector<uint8_t> rows(size_t(rowSize * rowsPerWrite));
    for (int bottom = pixels.height(); bottom > 0; bottom -= rowsPerWrite) {
        const int count = std::min(bottom, rowsPerWrite);
        for (int i = 0; i < count; ++i) {
            uint8_t *row = rows.data() + i * rowSize;
            readRowOnWhite(pixels, bottom - 1 - i, row);
            for (int x = 0; x < pixels.width(); ++x)
                std::swap(row[3 * x], row[3 * x + 2]); // stored as blue, green, red
        }
        if (!sink.write(rows.data(), size_t(count * rowSize)))
            return sink.failure({});
    }
    return sink.hasFailed() ? Outcome<Done>(sink.failure({})) : Outcome<Done>(Done{});
}

} // namespace hazelmark
