#include "ChannelNode.h"

#include <algorithm>

namespace hazelmark {

FilterNodePtr ChannelNode::of(const FilterNodePtr &node, int channel)
{
    if (node->channels() == 3) {
        if (FilterNodePtr plane = node->singlePlane(channel))
            return plane;
    }
    return FilterNodePtr(new ChannelNode(node, channel));
}

ChannelNode::ChannelNode(FilterNodePtr input, int channel)
    : FilterNode({std::move(input)})
    , m_channel(channel)
{
}

void ChannelNode::compute(Tile &result, const TileReader &inputs) const
{
    const Tile source = inputs.read(0, result.rect());
    for (int y = result.rect().top(); y <= result.rect().bottom(); ++y) {
        const float *colour = source.row(m_channel, y);
        if (source.hasAlpha())
            std::transform(colour, colour + result.width(), source.row(3, y), result.row(0, y), std::multiplies<>());
        else
            std::copy_n(colour, result.width(), result.row(0, y));
    }
}

bool ChannelNode::isZero(int, const QRect &region) const
{
    const FilterNodePtr &input = inputs()[0];
    return input->isZero(m_channel, region) || (input->channels() == 4 && input->isZero(3, region));
}

} // namespace hazelmark
