#include "ScaleNode.h"

#include "kernels/ScaleRows.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

double keysCubic(double x)
{
    x = std::abs(x);
    if (x < 1.0)
        return (1.5 * x - 2.5) * x * x + 1.0;
    if (x < 2.0)
        return ((-0.5 * x + 2.5) * x - 4.0) * x + 2.0;
    return 0.0;
}

constexpr double kKernelReach = 2.0;

} // namespace

ScaleNode::Axis::Axis(double sourceStart, double sourceLength, int outputLength, int inputFirst, int inputLast)
{
    const double step = sourceLength / outputLength;
    const double stretch = std::max(1.0, step);
    const int inputLength = inputLast - inputFirst + 1;
    const int spread = int(std::ceil(2.0 * kKernelReach * stretch)) + 1;
    taps = std::min(spread, inputLength);
    first.resize(std::size_t(outputLength));
    weights.assign(std::size_t(outputLength) * std::size_t(taps), 0.0f);
    std::vector<double> exact(static_cast<std::size_t>(taps));
    for (int i = 0; i < outputLength; ++i) {
        // Pixel i covers i .. i + 1; its centre lies in the middle.
        const double centre = sourceStart + (i + 0.5) * step - 0.5;
        const int begin = int(std::ceil(centre - kKernelReach * stretch));
        const int start = std::clamp(begin, inputFirst, inputLast - taps + 1);
        first[std::size_t(i)] = start;
        std::fill(exact.begin(), exact.end(), 0.0);
        double sum = 0.0;
        for (int t = begin; t < begin + spread; ++t) {
            const double weight = keysCubic((t - centre) / stretch);
            exact[std::size_t(std::clamp(t, inputFirst, inputLast) - start)] += weight;
            sum += weight;
        }
        for (int t = 0; t < taps; ++t)
            weights[std::size_t(i) * std::size_t(taps) + std::size_t(t)] = float(exact[std::size_t(t)] / sum);
    }
}

ScaleNode::ScaleNode(FilterNodePtr input, const QRect &inputExtent, const QRectF &source, QSize size)
    : FilterNode({std::move(input)})
    , m_inputExtent(inputExtent)
    , m_source(source)
    , m_size(size)
    , m_across(source.x(), source.width(), size.width(), inputExtent.left(), inputExtent.right())
    , m_along(source.y(), source.height(), size.height(), inputExtent.top(), inputExtent.bottom())
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
        const std::size_t offset = std::size_t(to.left());
        for (int c = 0; c < result.channels(); ++c)
            for (int y = rows.top(); y <= rows.bottom(); ++y)
                kernels::scaleRow(in.row(c, y) - in.rect().left(), m_across.first.data() + offset,
                                  m_across.weights.data() + offset * std::size_t(m_across.taps), m_across.taps,
                                  out.row(c, y), std::size_t(to.width()));
    };
    const auto scaleAlong = [&](const Tile &in, Tile &out) {
        std::vector<const float *> rows(std::size_t(m_along.taps));
        for (int c = 0; c < result.channels(); ++c) {
            for (int y = to.top(); y <= to.bottom(); ++y) {
                for (int t = 0; t < m_along.taps; ++t)
                    rows[std::size_t(t)] = in.row(c, m_along.inputBegin(y) + t);
                kernels::weighRows(rows.data(), m_along.weights.data() + std::size_t(y) * std::size_t(m_along.taps),
                                   m_along.taps, out.row(c, y), std::size_t(out.width()));
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
