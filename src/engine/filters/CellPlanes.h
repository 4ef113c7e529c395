#pragma once

#include "LargeMemory.h"

#include <QRect>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace hazelmark {

/// Planes of 16-bit samples for the cells of a grid over a picture, premultiplied. `rect` counts cells, upwards like
/// filter-image rows. The samples are not set; memory that nobody writes to is not taken from the system.
class CellPlanes
{
public:
    static constexpr int kPadding = 32; ///< readable samples before and after each row's own

    CellPlanes() = default;
    CellPlanes(const QRect &rect, int channels)
        : m_rect(rect)
        , m_channels(channels)
        , m_stride((std::size_t(rect.width()) + 3 * kPadding - 1) / kPadding * kPadding)
        , m_samples(makeLargeArray<std::uint16_t>(m_stride * std::size_t(rect.height()) * std::size_t(channels)))
    {
    }

    const QRect &rect() const { return m_rect; }
    int channels() const { return m_channels; }

    /// The sample at the left end of row y.
    std::uint16_t *row(int channel, int y) { return m_samples.get() + offset(channel, y); }
    const std::uint16_t *row(int channel, int y) const { return m_samples.get() + offset(channel, y); }
    /// Where column x of row y is, or would be.
    const std::uint16_t *at(int channel, int x, int y) const { return row(channel, y) + (x - m_rect.left()); }
    std::uint16_t *at(int channel, int x, int y) { return row(channel, y) + (x - m_rect.left()); }

    /// `count` samples from column x on of the row nearest to y; outside the rectangle those of the nearest cell.
    void copyClamped(int channel, int x, int y, int count, std::uint16_t *samples) const
    {
        const std::uint16_t *from = row(channel, std::clamp(y, m_rect.top(), m_rect.bottom()));
        const int before = std::clamp(m_rect.left() - x, 0, count);
        const int after = std::clamp(x + count - 1 - m_rect.right(), 0, count - before);
        const int between = count - before - after;
        std::fill_n(samples, before, from[0]);
        if (between > 0)
            std::copy_n(from + (x + before - m_rect.left()), between, samples + before);
        std::fill_n(samples + before + between, after, from[m_rect.width() - 1]);
    }

private:
    std::size_t offset(int channel, int y) const
    {
        return (std::size_t(channel) * std::size_t(m_rect.height()) + std::size_t(y - m_rect.top())) * m_stride +
               kPadding;
    }

    QRect m_rect;
    int m_channels = 0;
    std::size_t m_stride = 0;
    LargeArray<std::uint16_t> m_samples;
};

} // namespace hazelmark
