#include "OpacityNode.h"

#include <algorithm>
#include <cstring>

namespace hazelmark {

OpacityNode::OpacityNode(FilterNodePtr input, float factor)
    : FilterNode({std::move(input)})
    , m_factor(std::clamp(factor, 0.0f, 1.0f))
{
}

void OpacityNode::compute(Tile &result, const TileReader &inputs) const
{
    const Tile source = inputs.read(0, result.rect());
    const std::size_t rowBytes = std::size_t(result.width()) * sizeof(float);
    for (int y = result.rect().top(); y <= result.rect().bottom(); ++y) {
        for (int c = 0; c < 3; ++c)
            std::memcpy(result.row(c, y), source.row(c, y), rowBytes);
        float *alpha = result.row(3, y);
        if (!source.hasAlpha())
            std::fill_n(alpha, result.width(), m_factor);
        else
            std::transform(source.row(3, y), source.row(3, y) + result.width(), alpha,
                           [this](float value) { return value * m_factor; });
    }
}

} // namespace hazelmark
