#pragma once

#include "FilterNode.h"

namespace hazelmark {

/// A picture laid over nothing at an opacity: alpha times `factor`, colours as they are. Always four planes.
class OpacityNode : public FilterNode
{
public:
    /// `factor` is brought into 0..1.
    OpacityNode(FilterNodePtr input, float factor);

    int channels() const override { return 4; }
    void compute(Tile &result, const TileReader &inputs) const override;

private:
    float m_factor;
};

} // namespace hazelmark
