#pragma once

#include "FilterNode.h"

namespace hazelmark {

/// One colour plane of a picture as it shows over black, that is times alpha: how a mask is read.
class ChannelNode : public FilterNode
{
public:
    /// A node that yields plane `channel` of `node` over black, by the cheapest way there is.
    static FilterNodePtr of(const FilterNodePtr &node, int channel);

    int channels() const override { return 1; }
    void compute(Tile &result, const TileReader &inputs) const override;
    bool isZero(int channel, const QRect &region) const override;

private:
    ChannelNode(FilterNodePtr input, int channel);

    int m_channel;
};

} // namespace hazelmark
