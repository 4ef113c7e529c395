#include "ScaleNode.h"

#include "kernels/ScaleRows.h"

#include <vector>

namespace hazelmark {

ScaleNode::ScaleNode(FilterNodePtr input, const QRect &inputExtent, const QRectF &source, QSize size)
    : FilterNode({std::move(input)})
    , m_inputExtent(inputExtent)
    , m_source(source)
    , m_size(size)
    , m_across(ScaleAxis::cubic(source.x(), source.width(), size.width(), inputExtent.left(), inputExtent.right(), 0,
                                size.width()))
    , m_along(ScaleAxis::cubic(source.y(), source.height(), size.height(), inputExtent.top(), inputExtent.bottom(), 0,
                               size.height()))
{
}

QRect ScaleNode::inputRegion(std::size_t, const QRect &region) const
{
    const int left = m_across.inputBegin(region.left());
    const int right = m_across.inputEnd(region.right());
    const int low = m_along.inputBegin(region.top());
    const int high = m_along.inputEnd(region.bottom());
    return {left, low, right - left, high - low};
}

void ScaleNode::compute(Tile &result, const TileReader &inputs) const
{
    Tile source = inputs.read(0, inputRegion(0, result.rect()));
    source.premultiply();
    const QRect &from = source.rect();
    const QRect &to = result.rect();

    const auto scaleAcross = [&](const Tile &in, Tile &out, const QRect &rows) {
        for (int c = 0; c < result.channels(); ++c)
            for (int y = rows.top(); y <= rows.bottom(); ++y)
                kernels::scaleRow(in.row(c, y) - in.rect().left(), m_across.first(to.left()),
                                  m_across.weights(to.left()), m_across.taps(), out.row(c, y), std::size_t(to.width()));
    };
    const auto scaleAlong = [&](const Tile &in, Tile &out) {
        std::vector<const float *> rows(std::size_t(m_along.taps()));
        for (int c = 0; c < result.channels(); ++c) {
            for (int y = to.top(); y <= to.bottom(); ++y) {
                for (int t = 0; t < m_along.taps(); ++t)
                    rows[std::size_t(t)] = in.row(c, m_along.inputBegin(y) + t);
                kernels::weighRows(rows.data(), m_along.weights(y), m_along.taps(), out.row(c, y),
                                   std::size_t(out.width()));
            }
        }
    };

    // The cheaper order first meets the smaller number of rows in the pass across, which cannot run along a row.
    if (from.height() <= to.height()) {
        Tile between(QRect(to.left(), from.top(), to.width(), from.height()), source.channels());
        scaleAcross(source, between, from);
        scaleAlong(between, result);
    } else {
        Tile between(QRect(from.left(), to.top(), from.width(), to.height()), source.channels());
        scaleAlong(source, between);
        scaleAcross(between, result, to);
    }

    result.unpremultiply();
    for (int c = 0; c < result.channels(); ++c)
        for (int y = to.top(); y <= to.bottom(); ++y)
            kernels::clampToUnit(result.row(c, y), std::size_t(to.width()));
}

bool ScaleNode::isZero(int channel, const QRect &region) const
{
    return inputs()[0]->isZero(channel, inputRegion(0, region));
}

FilterNodePtr ScaleNode::singlePlane(int channel) const
{
    // Colours of a picture with alpha are scaled together with it.
    if (channels() == 4)
        return nullptr;
    FilterNodePtr plane = inputs()[0]->singlePlane(channel);
    return plane ? std::make_shared<ScaleNode>(std::move(plane), m_inputExtent, m_source, m_size) : nullptr;
}

} // namespace hazelmark
