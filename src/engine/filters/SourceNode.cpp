#include "SourceNode.h"

#include "PixelFormats.h"
#include "kernels/PixelRows.h"

#include <cstring>

namespace hazelmark {

namespace {

/// `pixels`: the first pixel wanted; `planes`: where the wanted planes go.
template <typename Sample>
void unpackRow(const Sample *pixels, bool gray, int onlyPlane, float *const *planes, int channels, std::size_t width)
{
    const kernels::SampleRows<Sample> &rows = kernels::pixelRows().of<Sample>();
    if (gray) {
        rows.unpackGray(pixels, planes[0], width);
        for (int c = 1; c < channels; ++c)
            std::memcpy(planes[c], planes[0], width * sizeof(float));
    } else if (onlyPlane >= 0) {
        rows.unpackChannel(pixels, onlyPlane, planes[0], width);
    } else {
        rows.unpackRgb(pixels, planes, channels, width);
    }
}

template <typename Sample>
bool anySample(const Sample *samples, std::size_t step, std::size_t count)
{
    // Gathered without a branch so that the loop is vectorised; the row is the unit of giving up early.
    Sample any = 0;
    for (std::size_t i = 0; i < count; ++i)
        any |= samples[i * step];
    return any != 0;
}

} // namespace

SourceNode::SourceNode(QImage bitmap)
    : SourceNode(std::move(bitmap), -1)
{
}

SourceNode::SourceNode(QImage bitmap, int onlyPlane)
    : m_bitmap(std::move(bitmap))
    , m_onlyPlane(onlyPlane)
{
}

int SourceNode::channels() const
{
    if (m_onlyPlane >= 0)
        return 1;
    return m_bitmap.hasAlphaChannel() ? 4 : 3;
}

void SourceNode::compute(Tile &result, const TileReader &) const
{
    const QRect &rect = result.rect();
    const bool gray = isGray(m_bitmap);
    const std::size_t offset = std::size_t(rect.left()) * (gray ? 1 : 4);
    const std::size_t width = std::size_t(rect.width());
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        float *planes[4] = {};
        for (int c = 0; c < result.channels(); ++c)
            planes[c] = result.row(c, y);
        if (isSixteenBit(m_bitmap))
            unpackRow(reinterpret_cast<const std::uint16_t *>(rowAt(y)) + offset, gray, m_onlyPlane, planes,
                      result.channels(), width);
        else
            unpackRow(rowAt(y) + offset, gray, m_onlyPlane, planes, result.channels(), width);
    }
}

bool SourceNode::isZero(int channel, const QRect &region) const
{
    const QRect inside = region & m_bitmap.rect();
    const std::size_t step = isGray(m_bitmap) ? 1 : 4;
    const std::size_t sample = step == 1 ? 0 : std::size_t(m_onlyPlane >= 0 ? m_onlyPlane : channel);
    const std::size_t offset = std::size_t(inside.left()) * step + sample;
    const std::size_t width = std::size_t(inside.width());
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        const bool any = isSixteenBit(m_bitmap)
                             ? anySample(reinterpret_cast<const std::uint16_t *>(rowAt(y)) + offset, step, width)
                             : anySample(rowAt(y) + offset, step, width);
        if (any)
            return false;
    }
    return true;
}

FilterNodePtr SourceNode::singlePlane(int channel) const
{
    return FilterNodePtr(new SourceNode(m_bitmap, channel));
}

} // namespace hazelmark
