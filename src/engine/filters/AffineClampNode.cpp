#include "AffineClampNode.h"

#include <algorithm>
#include <cstring>

namespace hazelmark {

AffineClampNode::AffineClampNode(FilterNodePtr input, const QRect &extent)
    : FilterNode({std::move(input)})
    , m_extent(extent)
{
}

QRect AffineClampNode::inputRegion(std::size_t, const QRect &region) const
{
    const auto nearest = [this](const QPoint &point) {
        return QPoint(std::clamp(point.x(), m_extent.left(), m_extent.right()),
                      std::clamp(point.y(), m_extent.top(), m_extent.bottom()));
    };
    return {nearest(region.topLeft()), nearest(region.bottomRight())};
}

void AffineClampNode::compute(Tile &result, const TileReader &inputs) const
{
    const Tile source = inputs.read(0, inputRegion(0, result.rect()));
    const QRect &from = source.rect();
    const QRect &to = result.rect();
    const int before = std::clamp(from.left() - to.left(), 0, to.width());
    const int after = std::clamp(to.right() - from.right(), 0, to.width());
    const int between = std::max(0, to.width() - before - after);
    const int skipped = std::max(0, to.left() - from.left());
    for (int c = 0; c < result.channels(); ++c) {
        for (int y = to.top(); y <= to.bottom(); ++y) {
            const float *in = source.row(c, std::clamp(y, from.top(), from.bottom()));
            float *out = result.row(c, y);
            std::fill_n(out, before, in[0]);
            std::memcpy(out + before, in + skipped, std::size_t(between) * sizeof(float));
            std::fill_n(out + before + between, to.width() - before - between, in[from.width() - 1]);
        }
    }
}

std::optional<std::size_t> AffineClampNode::passesThrough(const QRect &region) const
{
    return m_extent.contains(region) ? std::optional<std::size_t>(0) : std::nullopt;
}

} // namespace hazelmark
