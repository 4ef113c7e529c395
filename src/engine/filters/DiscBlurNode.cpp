#include "DiscBlurNode.h"

#include "CellPasses.h"
#include "DiscSummer.h"
#include "kernels/DiscWeightRows.h"
#include "kernels/PixelRows.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

/// Below, weights one by one are as fast as prefix sums, and exact.
constexpr double kLeastSummedRadius = 4.5;

/// How far a disc of spans may be off, of 1; over cells it is not all the error there is.
constexpr double kGoodOverPixels = 0.45 / 255.0;
constexpr double kGoodOverCells = 0.35 / 255.0;

struct BlurredCells : PreparedState
{
    explicit BlurredCells(CellPlanes planes)
        : cells(std::move(planes))
    {
    }
    CellPlanes cells;
};

int weightsReachFor(double radius)
{
    return std::max(0, int(std::ceil(radius - 0.5)));
}

/// Weights of one quadrant that sum to 1 over the disc.
std::vector<float> makeWeights(double radius, int reach)
{
    std::vector<double> coverage;
    double total = 0.0;
    for (int y = 0; y <= reach; ++y) {
        for (int x = 0; x <= reach; ++x) {
            coverage.push_back(kernels::discCoverage(radius, x, y));
            total += coverage.back() * (x > 0 ? 2 : 1) * (y > 0 ? 2 : 1);
        }
    }
    std::vector<float> weights;
    for (const double part : coverage)
        weights.push_back(float(part / total));
    return weights;
}

template <typename Step>
void forRows(Tile &tile, Step step)
{
    for (int y = tile.rect().top(); y <= tile.rect().bottom(); ++y) {
        float *const colours[3] = {tile.row(0, y), tile.row(1, y), tile.row(2, y)};
        step(colours, tile.row(3, y), std::size_t(tile.width()));
    }
}

QRegion grown(const QRegion &region, int by)
{
    QRegion result;
    for (const QRect &rect : region)
        result += rect.adjusted(-by, -by, by, by);
    return result;
}

} // namespace

DiscBlurNode::DiscBlurNode(FilterNodePtr input, float radius, const QRect &inputExtent)
    : FilterNode({std::move(input)})
    , m_inputExtent(inputExtent)
    , m_grid(inputExtent, double(radius))
{
    if (m_grid.discRadius() < kLeastSummedRadius) {
        m_weightsReach = weightsReachFor(m_grid.discRadius());
        m_weights = makeWeights(m_grid.discRadius(), m_weightsReach);
    } else {
        const double goodEnough = m_grid.scale() == 1 ? kGoodOverPixels : kGoodOverCells;
        m_summer = std::make_unique<DiscSummer>(m_grid.discRadius(), goodEnough);
    }
}

DiscBlurNode::~DiscBlurNode() = default;

int DiscBlurNode::reach() const
{
    return m_summer ? m_summer->reach() : m_weightsReach;
}

QRect DiscBlurNode::inputRegion(std::size_t, const QRect &region) const
{
    if (m_grid.scale() == 1)
        return region.adjusted(-reach(), -reach(), reach(), reach());
    // Whole blocks, and of what lies outside the picture no more than the cells that stand for all.
    constexpr int kMargin = CellGrid::kLargestDirectScale;
    const QRect all = m_inputExtent.adjusted(-kMargin, -kMargin, 2 * kMargin, 2 * kMargin);
    const QRect known = m_grid.cellsFor(region).adjusted(-reach(), -reach(), reach(), reach()) & m_grid.cells();
    if (m_grid.scale() > CellGrid::kLargestDirectScale || known.isEmpty())
        return all;
    return m_grid.pixelsOf(known).adjusted(-kPixelBlockWidth, -kPixelBlockHeight, kPixelBlockWidth, kPixelBlockHeight) &
           all;
}

Tile DiscBlurNode::readAround(const QRect &block, const TileReader &inputs) const
{
    Tile input = inputs.read(0, inputRegion(0, block));
    if (input.hasAlpha())
        forRows(input, kernels::premultiply);
    return input;
}

void DiscBlurNode::weigh(Tile &result, const TileReader &inputs) const
{
    const QRect &rect = result.rect();
    const Tile input = readAround(rect, inputs);
    for (int c = 0; c < result.channels(); ++c)
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            kernels::weighRow(input.row(c, y) + m_weightsReach, input.stride(), m_weights.data(), m_weightsReach,
                              result.row(c, y), std::size_t(rect.width()));
}

void DiscBlurNode::sum(Tile &result, const TileReader &inputs) const
{
    DiscSummer::Scratch scratch = m_summer->makeScratch();
    const QRect &rect = result.rect();
    for (int y = rect.top(); y <= rect.bottom(); y += DiscSummer::kBlockHeight) {
        for (int x = rect.left(); x <= rect.right(); x += DiscSummer::kBlockWidth) {
            const QRect block = QRect(x, y, DiscSummer::kBlockWidth, DiscSummer::kBlockHeight) & rect;
            const Tile input = readAround(block, inputs);
            const std::size_t width = std::size_t(input.width());
            for (int c = 0; c < result.channels(); ++c) {
                float *means = result.row(c, y) + (x - rect.left());
                const auto narrow = [&](int row, std::uint16_t *samples) {
                    return kernels::quantizeRow8(input.row(c, y + row), samples, width);
                };
                const auto wide = [&](int row, std::uint16_t *samples) {
                    kernels::quantizeRow(input.row(c, y + row), samples, width);
                };
                if (!m_summer->sumNarrow(scratch, block.width(), block.height(), narrow, means, result.stride()))
                    m_summer->sum(scratch, block.width(), block.height(), wide, means, result.stride());
            }
        }
    }
}

void DiscBlurNode::compute(Tile &result, const TileReader &inputs) const
{
    if (m_grid.scale() > 1)
        drawCells(static_cast<const BlurredCells *>(inputs.prepared())->cells, m_grid, result);
    else if (m_summer)
        sum(result, inputs);
    else
        weigh(result, inputs);
    if (result.hasAlpha())
        forRows(result, kernels::unpremultiply);
}

std::unique_ptr<PreparedState> DiscBlurNode::prepare(const QRegion &needed, const PrepareContext &context) const
{
    if (m_grid.scale() == 1 || needed.isEmpty())
        return nullptr;
    QRegion drawn;
    for (const QRect &rect : needed)
        drawn += m_grid.cellsFor(rect);
    const CellPlanes cells =
        averageIntoCells(m_grid, grown(drawn, m_summer->reach()), inputs()[0]->channels(), context);
    return std::make_unique<BlurredCells>(sumOverDisc(cells, *m_summer, drawn, context));
}

} // namespace hazelmark
