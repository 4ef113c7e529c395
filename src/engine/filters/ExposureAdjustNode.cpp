#include "ExposureAdjustNode.h"

#include "kernels/ToneRows.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

ExposureAdjustNode::ExposureAdjustNode(FilterNodePtr input, float ev)
    : FilterNode({std::move(input)})
    , m_gain(std::exp2(ev))
{
}

void ExposureAdjustNode::compute(Tile &result, const TileReader &inputs) const
{
    result = inputs.read(0, result.rect());
    for (int c = 0; c < std::min(3, result.channels()); ++c)
        for (int y = result.rect().top(); y <= result.rect().bottom(); ++y)
            kernels::scaleLinearLight(result.row(c, y), m_gain, std::size_t(result.width()));
}

} // namespace hazelmark
