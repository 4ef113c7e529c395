#pragma once

#include <QImage>

#include <cstdint>
#include <random>

namespace hazelmark::testing {

/// A reproducible picture of noise in any of the working formats.
inline QImage noise(QSize size, QImage::Format format, unsigned seed = 1)
{
    QImage image(size, format);
    std::mt19937 random(seed);
    for (int y = 0; y < size.height(); ++y) {
        uchar *line = image.scanLine(y);
        for (int i = 0; i < size.width() * image.depth() / 8; ++i)
            line[i] = uchar(random());
        if (format == QImage::Format_RGBX8888) {
            for (int x = 0; x < size.width(); ++x)
                line[4 * x + 3] = 255;
        } else if (format == QImage::Format_RGBX64) {
            for (int x = 0; x < size.width(); ++x)
                reinterpret_cast<std::uint16_t *>(line)[4 * x + 3] = 65535;
        }
    }
    return image;
}

inline QImage filled(QSize size, QImage::Format format, const QColor &color)
{
    QImage image(size, format);
    image.fill(color);
    return image;
}

/// The samples of a pixel of an 8-bit four-sample picture, top row first.
inline const uchar *samplesAt(const QImage &image, int x, int y)
{
    return image.constScanLine(y) + 4 * x;
}

} // namespace hazelmark::testing
