#pragma once

#include "FilterNode.h"

namespace hazelmark {

/// result = k x foreground + (1 - k) x background for every channel including alpha, premultiplied; k is the mask's
/// plane. Where k is 0 the background's stored values come out to the bit, and tiles that no paint reaches are
/// handed through without asking for the foreground at all.
class BlendWithMaskNode : public FilterNode
{
public:
    /// `mask` yields one plane.
    BlendWithMaskNode(FilterNodePtr foreground, FilterNodePtr background, FilterNodePtr mask);

    void compute(Tile &result, const TileReader &inputs) const override;
    std::optional<std::size_t> passesThrough(const QRect &region) const override;
};

} // namespace hazelmark
