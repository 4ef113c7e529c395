#include "PlaceNode.h"

#include <algorithm>
#include <cstring>

namespace hazelmark {

PlaceNode::PlaceNode(FilterNodePtr input, const QRect &inputExtent, QPoint offset)
    : FilterNode({std::move(input)})
    , m_inputExtent(inputExtent)
    , m_offset(offset)
{
}

QRect PlaceNode::inputRegion(std::size_t, const QRect &region) const
{
    return region.translated(-m_offset) & m_inputExtent;
}

void PlaceNode::compute(Tile &result, const TileReader &inputs) const
{
    const QRect &to = result.rect();
    for (int c = 0; c < 4; ++c)
        for (int y = to.top(); y <= to.bottom(); ++y)
            std::fill_n(result.row(c, y), to.width(), 0.0f);
    const QRect region = inputRegion(0, to);
    if (region.isEmpty())
        return;
    const Tile source = inputs.read(0, region);
    const int start = region.left() + m_offset.x() - to.left();
    for (int y = region.top(); y <= region.bottom(); ++y) {
        for (int c = 0; c < source.channels(); ++c)
            std::memcpy(result.row(c, y + m_offset.y()) + start, source.row(c, y),
                        std::size_t(region.width()) * sizeof(float));
        if (!source.hasAlpha())
            std::fill_n(result.row(3, y + m_offset.y()) + start, region.width(), 1.0f);
    }
}

} // namespace hazelmark
