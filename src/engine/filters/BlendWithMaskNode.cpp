#include "BlendWithMaskNode.h"

#include "kernels/ToneRows.h"

#include <algorithm>

namespace hazelmark {

namespace {

enum Input : std::size_t { Foreground, Background, Mask };

/// The planes of one row; an opaque tile lends a row of ones as its alpha.
struct RowPlanes
{
    RowPlanes(const Tile &tile, int y, const float *ones)
    {
        for (int c = 0; c < 3; ++c)
            plane[c] = tile.row(c, y);
        plane[3] = tile.hasAlpha() ? tile.row(3, y) : ones;
    }
    const float *plane[4];
};

} // namespace

BlendWithMaskNode::BlendWithMaskNode(FilterNodePtr foreground, FilterNodePtr background, FilterNodePtr mask)
    : FilterNode({std::move(foreground), std::move(background), std::move(mask)})
{
}

void BlendWithMaskNode::compute(Tile &result, const TileReader &inputs) const
{
    const QRect &rect = result.rect();
    const Tile mask = inputs.read(Mask, rect);
    const Tile foreground = inputs.read(Foreground, rect);
    const Tile background = inputs.read(Background, rect);
    const std::size_t width = std::size_t(rect.width());
    if (!result.hasAlpha()) {
        for (int c = 0; c < result.channels(); ++c)
            for (int y = rect.top(); y <= rect.bottom(); ++y)
                kernels::blendOpaque(foreground.row(c, y), background.row(c, y), mask.row(0, y), result.row(c, y),
                                     width);
        return;
    }
    const Tile ones = [&] {
        Tile row(QRect(0, 0, rect.width(), 1), 1);
        std::fill_n(row.row(0, 0), row.stride(), 1.0f);
        return row;
    }();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        const RowPlanes fg(foreground, y, ones.row(0, 0));
        const RowPlanes bg(background, y, ones.row(0, 0));
        float *planes[4] = {result.row(0, y), result.row(1, y), result.row(2, y), result.row(3, y)};
        kernels::blendWithAlpha(fg.plane, bg.plane, mask.row(0, y), planes, width);
    }
}

std::optional<std::size_t> BlendWithMaskNode::passesThrough(const QRect &region) const
{
    const bool sameBothWays = inputs()[Foreground]->shownIn(region) == inputs()[Background]->shownIn(region);
    return sameBothWays || inputs()[Mask]->isZero(0, region) ? std::optional<std::size_t>(Background) : std::nullopt;
}

} // namespace hazelmark
