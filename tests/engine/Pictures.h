#pragma once

#include <QImage>

#include <algorithm>
#include <cmath>
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

/// A bitmap whose pixels are colorAt(x, y), counted from the top left.
template <typename ColorAt>
QImage drawn(QSize size, QImage::Format format, const ColorAt &colorAt)
{
    QImage image(size, format);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, colorAt(x, y));
    }
    return image;
}

/// The curve of IEC 61966-2-1, 0..1 both ways.
inline double linearFromSrgb(double v)
{
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}
inline double srgbFromLinear(double v)
{
    return v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
}

/// The samples of a pixel of an 8-bit four-sample picture, top row first.
inline const uchar *samplesAt(const QImage &image, int x, int y)
{
    return image.constScanLine(y) + 4 * x;
}

/// The largest difference of any premultiplied sample of two pictures, in steps of 255.
inline double difference(const QImage &a, const QImage &b)
{
    const QImage one = a.convertToFormat(QImage::Format_RGBA64_Premultiplied);
    const QImage other = b.convertToFormat(QImage::Format_RGBA64_Premultiplied);
    int most = one.size() == other.size() ? 0 : 65535;
    for (int y = 0; y < one.height() && most < 65535; ++y) {
        const auto *p = reinterpret_cast<const quint16 *>(one.constScanLine(y));
        const auto *q = reinterpret_cast<const quint16 *>(other.constScanLine(y));
        for (int i = 0; i < 4 * one.width(); ++i)
            most = std::max(most, std::abs(p[i] - q[i]));
    }
    return most / 257.0;
}

} // namespace hazelmark::testing
