#pragma once

// What the disc blur should be: a sum in double precision over the disc, weight by weight.

#include "FilterImage.h"
#include "Renderer.h"
#include "kernels/DiscShape.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace hazelmark::testing {

using Colour = std::array<double, 4>; ///< straight alpha, 0..1

/// What an edge-clamped bitmap holds at (x, y), counted from the top left.
class Pixels
{
public:
    explicit Pixels(const QImage &bitmap)
        : m_bitmap(bitmap.convertToFormat(QImage::Format_RGBA64))
    {
    }

    Colour at(int x, int y) const
    {
        x = std::clamp(x, 0, m_bitmap.width() - 1);
        y = std::clamp(y, 0, m_bitmap.height() - 1);
        const QRgba64 pixel = reinterpret_cast<const QRgba64 *>(m_bitmap.constScanLine(y))[x];
        return {pixel.red() / 65535.0, pixel.green() / 65535.0, pixel.blue() / 65535.0, pixel.alpha() / 65535.0};
    }

private:
    QImage m_bitmap;
};

class DiscBlurReference
{
public:
    DiscBlurReference(const QImage &bitmap, double radius)
        : m_pixels(bitmap)
        , m_reach(int(std::ceil(radius + 0.5)))
    {
        for (int y = 0; y <= m_reach; ++y)
            for (int x = 0; x <= m_reach; ++x)
                m_coverage.push_back(kernels::discCoverage(radius, x, y));
    }

    Colour at(int x, int y) const
    {
        Colour sum{};
        double total = 0.0;
        for (int dy = -m_reach; dy <= m_reach; ++dy) {
            for (int dx = -m_reach; dx <= m_reach; ++dx) {
                const double weight = m_coverage[std::size_t(std::abs(dy) * (m_reach + 1) + std::abs(dx))];
                if (weight == 0.0)
                    continue;
                const Colour colour = m_pixels.at(x + dx, y + dy);
                for (std::size_t c = 0; c < 3; ++c)
                    sum[c] += weight * colour[c] * colour[3];
                sum[3] += weight * colour[3];
                total += weight;
            }
        }
        for (std::size_t c = 0; c < 3; ++c)
            sum[c] = sum[3] > 0.0 ? sum[c] / sum[3] : 0.0;
        sum[3] /= total;
        return sum;
    }

private:
    Pixels m_pixels;
    int m_reach;
    std::vector<double> m_coverage;
};

/// The value 0..1 of a channel at a pixel counted from the top left.
using Painter = std::function<double(int x, int y, int channel)>;

inline QImage paint(QSize size, QImage::Format format, const Painter &painter)
{
    QImage bitmap(size, format);
    for (int y = 0; y < size.height(); ++y) {
        for (int i = 0; i < 4 * size.width(); ++i) {
            const bool unused = i % 4 == 3 && !bitmap.hasAlphaChannel();
            const double value = unused ? 1.0 : painter(i / 4, y, i % 4);
            if (bitmap.depth() == 64)
                reinterpret_cast<quint16 *>(bitmap.scanLine(y))[i] = quint16(std::lround(value * 65535.0));
            else
                bitmap.scanLine(y)[i] = uchar(std::lround(value * 255.0));
        }
    }
    return bitmap;
}

/// The same white noise every time, 0..1.
inline double noise(int x, int y, int channel)
{
    std::uint32_t h = std::uint32_t(x) * 0x9E3779B1u ^ std::uint32_t(y) * 0x85EBCA77u ^ std::uint32_t(channel) << 20;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    h = (h ^ h >> 12) * 0x297A2D39u;
    return double((h ^ h >> 15) >> 8) / double(1 << 24);
}

inline QImage blurred(const QImage &bitmap, float radius, int threads = 2)
{
    return Renderer(threads).draw(FilterImage(bitmap).clamped().discBlurred(radius));
}

struct BlurError
{
    double largest = 0.0; ///< of 255
    double mean = 0.0;
};

/// How far a blurred bitmap is off, at every `step`th pixel each way of a part of it. Colours count times their alpha.
inline BlurError errorOf(const QImage &result, const QImage &bitmap, double radius, const QRect &part, int step)
{
    const DiscBlurReference reference(bitmap, radius);
    const Pixels pixels(result);
    BlurError error;
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); y += step) {
        for (int x = part.left(); x <= part.right(); x += step) {
            const Colour wanted = reference.at(x, y), got = pixels.at(x, y);
            for (std::size_t c = 0; c < 4; ++c) {
                const double off = 255.0 * (c < 3 ? wanted[3] : 1.0) * std::abs(got[c] - wanted[c]);
                error.largest = std::max(error.largest, off);
                error.mean += off;
                ++count;
            }
        }
    }
    error.mean /= count;
    return error;
}

} // namespace hazelmark::testing
