#include "DiscBlurNode.h"

#include "CellPasses.h"
#include "DiscSummer.h"
#include "kernels/DiscWeightRows.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace hazelmark {

namespace {

/// Below, weights one by one are as fast as prefix sums, and exact.
constexpr double kLeastSummedRadius = 4.5;
static_assert(kLeastSummedRadius + 0.5 <= kernels::kMostReach);

/// How far a disc of spans may be off, of 1; over cells it is not all the error there is, and less is allowed there.
constexpr double kGoodOverPixels = 0.45 / 255.0;

/// Weights of one quadrant that sum to 1 over the disc, for kernels::weighRow().
struct Weights
{
    explicit Weights(double radius)
        : reach(std::max(0, int(std::ceil(radius - 0.5))))
    {
        std::vector<double> coverage;
        double total = 0.0;
        for (int y = 0; y <= reach; ++y) {
            for (int x = 0; x <= reach; ++x) {
                coverage.push_back(kernels::discCoverage(radius, x, y));
                total += coverage.back() * (x > 0 ? 2 : 1) * (y > 0 ? 2 : 1);
            }
        }
        for (const double part : coverage)
            values.push_back(float(part / total));
    }

    int reach;
    std::vector<float> values;
};

bool isTiny(const CellGrid &grid)
{
    return grid.discRadius() < kLeastSummedRadius;
}

/// No less than the reach of the weights or the spans of the disc, in cells.
int reachOf(const CellGrid &grid)
{
    return int(std::ceil(grid.discRadius())) + 1;
}

QRegion grown(const QRegion &region, int by)
{
    QRegion result;
    for (const QRect &rect : region)
        result += rect.adjusted(-by, -by, by, by);
    return result;
}

/// A block and all that discs in it reach, premultiplied.
Tile readAround(const QRect &block, int reach, const TileReader &inputs)
{
    Tile input = inputs.read(0, block.adjusted(-reach, -reach, reach, reach));
    input.premultiply();
    return input;
}

void weigh(Tile &result, const Weights &weights, const TileReader &inputs)
{
    const QRect &rect = result.rect();
    const Tile input = readAround(rect, weights.reach, inputs);
    for (int c = 0; c < result.channels(); ++c)
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            kernels::weighRow(input.row(c, y), input.stride(), weights.values.data(), weights.reach, result.row(c, y),
                              std::size_t(rect.width()));
}

void sum(Tile &result, const DiscSummer &summer, const TileReader &inputs)
{
    DiscSummer::Scratch scratch = summer.makeScratch();
    const QRect &rect = result.rect();
    for (int y = rect.top(); y <= rect.bottom(); y += DiscSummer::kBlockHeight) {
        for (int x = rect.left(); x <= rect.right(); x += DiscSummer::kBlockWidth) {
            const QRect block = QRect(x, y, DiscSummer::kBlockWidth, DiscSummer::kBlockHeight) & rect;
            const Tile input = readAround(block, summer.reach(), inputs);
            const std::size_t width = std::size_t(input.width());
            for (int c = 0; c < result.channels(); ++c) {
                float *means = result.row(c, y) + (x - rect.left());
                const auto narrow = [&](int row, std::uint16_t *samples) {
                    return kernels::quantizeRow8(input.row(c, y + row), samples, width);
                };
                const auto wide = [&](int row, std::uint16_t *samples) {
                    kernels::quantizeRow(input.row(c, y + row), samples, width);
                };
                if (!summer.sumNarrow(scratch, block.width(), block.height(), narrow, means, result.stride()))
                    summer.sum(scratch, block.width(), block.height(), wide, means, result.stride());
            }
        }
    }
}

} // namespace

struct DiscBlurNode::Prepared : PreparedState
{
    std::optional<Weights> weights;
    std::optional<DiscSummer> summer;
    CellPlanes cells; ///< blurred
};

DiscBlurNode::DiscBlurNode(FilterNodePtr input, float radius, const QRect &inputExtent)
    : FilterNode({std::move(input)})
    , m_inputExtent(inputExtent)
    , m_grid(inputExtent, double(radius))
{
}

QRect DiscBlurNode::inputRegion(std::size_t, const QRect &region) const
{
    const int reach = reachOf(m_grid);
    if (m_grid.scale() == 1)
        return region.adjusted(-reach, -reach, reach, reach);
    // Whole blocks, and of what lies outside the picture no more than the cells that stand for all.
    constexpr int kMargin = CellGrid::kLargestDirectScale;
    const QRect all = m_inputExtent.adjusted(-kMargin, -kMargin, 2 * kMargin, 2 * kMargin);
    const QRect known = m_grid.cellsFor(region).adjusted(-reach, -reach, reach, reach) & m_grid.cells();
    if (m_grid.scale() > CellGrid::kLargestDirectScale || known.isEmpty())
        return all;
    return m_grid.pixelsOf(known).adjusted(-kPixelBlockWidth, -kPixelBlockHeight, kPixelBlockWidth, kPixelBlockHeight) &
           all;
}

std::unique_ptr<PreparedState> DiscBlurNode::prepare(const QRegion &needed, const PrepareContext &context) const
{
    auto prepared = std::make_unique<Prepared>();
    if (isTiny(m_grid)) {
        prepared->weights.emplace(m_grid.discRadius());
        return prepared;
    }
    prepared->summer.emplace(m_grid.discRadius(), m_grid.scale() == 1 ? kGoodOverPixels : kGoodOverCells);
    if (m_grid.scale() > 1 && !needed.isEmpty()) {
        QRegion drawn;
        for (const QRect &rect : needed)
            drawn += m_grid.cellsFor(rect);
        const CellPlanes cells =
            averageIntoCells(m_grid, grown(drawn, prepared->summer->reach()), inputs()[0]->channels(), context);
        prepared->cells = sumOverDisc(cells, *prepared->summer, drawn, context);
    }
    return prepared;
}

void DiscBlurNode::compute(Tile &result, const TileReader &inputs) const
{
    const auto &prepared = *static_cast<const Prepared *>(inputs.prepared());
    if (m_grid.scale() > 1)
        drawCells(prepared.cells, m_grid, result);
    else if (prepared.weights)
        weigh(result, *prepared.weights, inputs);
    else
        sum(result, *prepared.summer, inputs);
    result.unpremultiply();
}

} // namespace hazelmark
