#pragma once

#include "FilterNode.h"

#include <array>

class QColor;

namespace hazelmark {

/// A picture with alpha laid over an opaque colour; opaque, so always three planes.
class OverColorNode : public FilterNode
{
public:
    OverColorNode(FilterNodePtr input, const QColor &color);

    int channels() const override { return 3; }
    void compute(Tile &result, const TileReader &inputs) const override;
    bool isZero(int channel, const QRect &region) const override;

private:
    std::array<float, 3> m_color;
};

} // namespace hazelmark
