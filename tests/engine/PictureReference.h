#pragma once

// What pictures should be, in double precision and weight by weight: the sum over a disc, and what others make of them.

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
        : m_size(bitmap.size())
    {
        const QImage deep = bitmap.convertToFormat(QImage::Format_RGBA64);
        for (int y = 0; y < m_size.height(); ++y) {
            const auto *line = reinterpret_cast<const QRgba64 *>(deep.constScanLine(y));
            for (const QRgba64 *pixel = line; pixel != line + m_size.width(); ++pixel)
                m_colours.push_back({pixel->red() / 65535.0, pixel->green() / 65535.0, pixel->blue() / 65535.0,
                                     pixel->alpha() / 65535.0});
        }
    }

    QRect rect() const { return {QPoint(), m_size}; }
    const Colour &operator()(int x, int y) const
    {
        x = std::clamp(x, 0, m_size.width() - 1);
        y = std::clamp(y, 0, m_size.height() - 1);
        return m_colours[std::size_t(y) * std::size_t(m_size.width()) + std::size_t(x)];
    }

private:
    QSize m_size;
    std::vector<Colour> m_colours;
};

/// A sum of colours by their weights, which add up to 1.
class WeightedSum
{
public:
    void add(double weight, const Colour &colour)
    {
        const double share = weight * colour[3];
        for (std::size_t c = 0; c < 3; ++c)
            m_sum[c] += share * colour[c];
        m_sum[3] += share;
    }
    /// As a picture can hold it.
    Colour colour() const
    {
        Colour colour{0, 0, 0, std::clamp(m_sum[3], 0.0, 1.0)};
        for (std::size_t c = 0; c < 3 && m_sum[3] > 0; ++c)
            colour[c] = std::clamp(m_sum[c] / m_sum[3], 0.0, 1.0);
        return colour;
    }

private:
    Colour m_sum{};
};

class DiscBlurReference
{
public:
    DiscBlurReference(const QImage &bitmap, double radius)
        : m_pixels(bitmap)
        , m_reach(int(std::ceil(radius + 0.5)))
    {
        for (int y = 0; y <= m_reach; ++y) {
            for (int x = 0; x <= m_reach; ++x) {
                const bool isInside = std::hypot(x + 0.5, y + 0.5) < radius;
                const bool isOutside = std::hypot(x - 0.5, y - 0.5) > radius && x > 0 && y > 0;
                m_weights.push_back(isInside ? 1 : isOutside ? 0 : kernels::discCoverage(radius, x, y));
            }
        }
        for (double &weight : m_weights)
            weight /= M_PI * radius * radius;
    }

    Colour operator()(int x, int y) const
    {
        WeightedSum sum;
        for (int dy = -m_reach; dy <= m_reach; ++dy) {
            const double *weights = m_weights.data() + std::abs(dy) * (m_reach + 1);
            for (int dx = -m_reach; dx <= m_reach; ++dx)
                if (weights[std::abs(dx)] > 0)
                    sum.add(weights[std::abs(dx)], m_pixels(x + dx, y + dy));
        }
        return sum.colour();
    }

private:
    Pixels m_pixels;
    int m_reach;
    std::vector<double> m_weights;
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

struct PictureError
{
    double largest = 0.0; ///< of 255
    double mean = 0.0;
};

/// How far a bitmap is off what reference(x, y) gives, at every `step`th pixel each way of a part of it. Colours count
/// times their alpha.
template <typename Reference>
PictureError errorOf(const QImage &result, const Reference &reference, const QRect &part, int step)
{
    const Pixels pixels(result);
    PictureError error;
    int count = 0;
    for (int y = part.top(); y <= part.bottom(); y += step) {
        for (int x = part.left(); x <= part.right(); x += step) {
            const Colour wanted = reference(x, y), got = pixels(x, y);
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
