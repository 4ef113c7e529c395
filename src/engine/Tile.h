#pragma once

#include <QRect>

#include <cstddef>
#include <memory>

namespace hazelmark {

/// The pixels of one rectangle of a filter image while it is computed.
///
/// Planar 32-bit floats, straight alpha, encoded (stored) values in 0..1: an 8-bit sample v is v / 255, a 16-bit one
/// v / 65535, and both come back exactly. Three planes (R, G, B) for opaque pictures, four (R, G, B, A) for others, one
/// for coverage.
/// Rows count upwards like every filter-image coordinate: row(c, rect().top()) is the lowest row.
///
/// Every row starts at a 64-byte boundary and is padded to a multiple of kRowPadding floats, which kernels may read
/// and overwrite.
class Tile
{
public:
    static constexpr int kRowPadding = 16;

    Tile() = default;
    Tile(const QRect &rect, int channels);

    const QRect &rect() const { return m_rect; }
    int width() const { return m_rect.width(); }
    int height() const { return m_rect.height(); }
    int channels() const { return m_channels; }
    bool hasAlpha() const { return m_channels == 4; }
    /// Distance between two rows of one plane, in floats.
    std::size_t stride() const { return m_stride; }

    /// The row at height y (rect().top() <= y <= rect().bottom()) of a plane, starting at x = rect().left().
    float *row(int channel, int y) { return m_data.get() + offset(channel, y); }
    const float *row(int channel, int y) const { return m_data.get() + offset(channel, y); }

    /// Multiplies the colours by alpha, or divides them by it (0 / 0 is 0), where there is one.
    void premultiply();
    void unpremultiply();

private:
    struct Release
    {
        void operator()(float *data) const;
    };

    std::size_t offset(int channel, int y) const
    {
        return (std::size_t(channel) * std::size_t(m_rect.height()) + std::size_t(y - m_rect.top())) * m_stride;
    }

    void forColours(void (*operation)(float *const *colours, const float *alpha, std::size_t width));

    QRect m_rect;
    int m_channels = 0;
    std::size_t m_stride = 0;
    std::unique_ptr<float[], Release> m_data;
};

} // namespace hazelmark
