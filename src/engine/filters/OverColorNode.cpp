#include "OverColorNode.h"

#include <QColor>

namespace hazelmark {

OverColorNode::OverColorNode(FilterNodePtr input, const QColor &color)
    : FilterNode({std::move(input)})
    , m_color{float(color.redF()), float(color.greenF()), float(color.blueF())}
{
}

void OverColorNode::compute(Tile &result, const TileReader &inputs) const
{
    const Tile source = inputs.read(0, result.rect());
    for (int c = 0; c < 3; ++c) {
        const float behind = m_color[std::size_t(c)];
        for (int y = result.rect().top(); y <= result.rect().bottom(); ++y) {
            const float *colour = source.row(c, y);
            const float *alpha = source.row(3, y);
            float *out = result.row(c, y);
            for (int x = 0; x < result.width(); ++x)
                out[x] = behind + (colour[x] - behind) * alpha[x];
        }
    }
}

bool OverColorNode::isZero(int channel, const QRect &region) const
{
    const FilterNode &input = *inputs()[0];
    return m_color[std::size_t(channel)] == 0.0f && (input.isZero(channel, region) || input.isZero(3, region));
}

} // namespace hazelmark
