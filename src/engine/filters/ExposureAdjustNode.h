#pragma once

#include "FilterNode.h"

namespace hazelmark {

/// Multiplies every colour value, in linear light (sRGB curve), by 2 raised to `ev`; alpha stays. Works on straight
/// values.
class ExposureAdjustNode : public FilterNode
{
public:
    ExposureAdjustNode(FilterNodePtr input, float ev);

    void compute(Tile &result, const TileReader &inputs) const override;

private:
    float m_gain;
};

} // namespace hazelmark
