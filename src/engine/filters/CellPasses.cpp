#include "CellPasses.h"

#include "DiscSummer.h"

#include <vector>

namespace hazelmark {

namespace {

std::size_t paddedWidth(int width)
{
    return (std::size_t(width) / kernels::kRowGrain + 1) * kernels::kRowGrain;
}

/// The blocks of a rectangle that a region touches.
std::vector<QRect> blocksOf(const QRect &rect, int width, int height, const QRegion &region)
{
    std::vector<QRect> blocks;
    for (int y = rect.top(); y <= rect.bottom(); y += height) {
        for (int x = rect.left(); x <= rect.right(); x += width) {
            const QRect block = QRect(x, y, width, height) & rect;
            if (region.intersects(block))
                blocks.push_back(block);
        }
    }
    return blocks;
}

/// The cells of twice the size.
CellPlanes halved(const CellPlanes &fine, const CellGrid &grid)
{
    CellPlanes cells(grid.cells(), fine.channels());
    const QRect &rect = cells.rect();
    const int width = 2 * rect.width();
    std::vector<std::uint16_t> lower(static_cast<std::size_t>(width)), upper(static_cast<std::size_t>(width));
    for (int c = 0; c < fine.channels(); ++c) {
        for (int k = rect.top(); k <= rect.bottom(); ++k) {
            fine.copyClamped(c, 2 * rect.left(), 2 * k, width, lower.data());
            fine.copyClamped(c, 2 * rect.left(), 2 * k + 1, width, upper.data());
            std::uint16_t *out = cells.row(c, k);
            for (std::size_t i = 0; i < std::size_t(rect.width()); ++i)
                out[i] = std::uint16_t((lower[2 * i] + lower[2 * i + 1] + upper[2 * i] + upper[2 * i + 1] + 2) / 4);
        }
    }
    return cells;
}

/// Draws one row of cells up to the columns of a tile.
class RowExpander
{
public:
    RowExpander(const CellGrid &grid, const QRect &region)
        : m_grid(grid)
        , m_left(grid.cellsFor(region).left())
        , m_cells(grid.cellsFor(region).width() - kernels::kTaps)
    {
        // The pixel (0, 0) of a cell is the same place in all of them.
        const CellGrid::Place first = grid.placeOfColumn(region.left());
        if (grid.scale() <= 4) {
            const int begin = grid.pixelsOf(QRect(m_left + 3, 0, 1, 1)).left();
            m_offset = std::size_t(region.left() - begin);
            for (int q = 0; q < grid.scale(); ++q)
                m_phases.push_back(grid.placeOfColumn(begin + q).taps);
            return;
        }
        for (std::vector<float> &taps : m_taps)
            taps.resize(paddedWidth(region.width()) + kernels::kRowGrain);
        int cell = first.cell;
        m_runs.push_back({0, 0, cell - m_left});
        for (int x = 0; x < region.width(); ++x) {
            const CellGrid::Place place = grid.placeOfColumn(region.left() + x);
            if (place.cell != cell)
                m_runs.push_back({std::size_t(x), std::size_t(x), place.cell - m_left});
            cell = place.cell;
            m_runs.back().end = std::size_t(x) + 1;
            for (std::size_t t = 0; t < kernels::kTaps; ++t)
                m_taps[t][std::size_t(x)] = place.taps[t];
        }
    }

    /// The first of the tile's columns in an expanded row.
    std::size_t offset() const { return m_offset; }
    std::size_t rowSize(int width) const
    {
        return m_offset + paddedWidth(width) + kernels::kRowGrain * std::size_t(m_phases.empty() ? 1 : m_grid.scale());
    }

    void expand(const std::uint16_t *cells, float *values) const
    {
        if (!m_phases.empty()) {
            kernels::expandRow(cells + 3, m_phases.data(), m_grid.scale(), values, std::size_t(m_cells));
            return;
        }
        const float *taps[kernels::kTaps];
        for (std::size_t t = 0; t < kernels::kTaps; ++t)
            taps[t] = m_taps[t].data();
        kernels::expandWideRow(cells, m_runs.data(), m_runs.size(), taps, values);
    }

    int left() const { return m_left; }

private:
    const CellGrid &m_grid;
    int m_left;
    int m_cells;
    std::size_t m_offset = 0;
    std::vector<kernels::Taps> m_phases;
    std::vector<float> m_taps[kernels::kTaps];
    std::vector<kernels::CellRun> m_runs;
};

} // namespace

void averageBlock(const CellGrid &grid, const QRect &block, const TileReader &inputs, CellPlanes &cells)
{
    const int scale = grid.scale();
    Tile pixels = inputs.read(0, grid.pixelsOf(block));
    const std::size_t width = std::size_t(pixels.width());
    std::vector<float> sums(paddedWidth(pixels.width()) + 2 * kernels::kRowGrain * std::size_t(scale));
    std::vector<std::uint16_t> samples(paddedWidth(block.width()));
    const float factor = 65535.0f / (float(scale) * float(scale));
    pixels.premultiply();
    for (int c = 0; c < pixels.channels(); ++c) {
        for (int k = block.top(); k <= block.bottom(); ++k) {
            const int bottom = pixels.rect().top() + (k - block.top()) * scale;
            for (int y = 0; y < scale; ++y)
                kernels::addRow(pixels.row(c, bottom + y), sums.data(), y == 0, width);
            kernels::averageCells(sums.data(), scale, factor, samples.data(), std::size_t(block.width()));
            std::copy_n(samples.data(), block.width(), cells.at(c, block.left(), k));
        }
    }
}

CellPlanes averageIntoCells(const CellGrid &grid, const QRegion &needed, int channels, const PrepareContext &context)
{
    if (grid.scale() > CellGrid::kLargestDirectScale) {
        const CellGrid finer = grid.withScale(grid.scale() / 2);
        return halved(averageIntoCells(finer, finer.cells(), channels, context), grid);
    }
    CellPlanes cells(grid.cells(), channels);
    const std::vector<QRect> blocks =
        blocksOf(cells.rect(), kPixelBlockWidth / grid.scale(), kPixelBlockHeight / grid.scale(), needed);
    context.parallelFor(int(blocks.size()), [&](int i) { averageBlock(grid, blocks[std::size_t(i)], context, cells); });
    return cells;
}

void sumBlock(const CellPlanes &cells, const DiscSummer &disc, const QRect &block, CellPlanes &sums)
{
    const int reach = disc.reach();
    DiscSummer::Scratch scratch = disc.makeScratch();
    const std::size_t stride = paddedWidth(DiscSummer::kBlockWidth);
    std::vector<float> means(stride * DiscSummer::kBlockHeight);
    std::vector<std::uint16_t> samples(stride);
    for (int c = 0; c < cells.channels(); ++c) {
        const auto read = [&](int y, std::uint16_t *row) {
            cells.copyClamped(c, block.left() - reach, block.top() + y, block.width() + 2 * reach, row);
        };
        disc.sum(scratch, block.width(), block.height(), read, means.data(), stride);
        for (int y = 0; y < block.height(); ++y) {
            kernels::quantizeRow(means.data() + std::size_t(y) * stride, samples.data(), std::size_t(block.width()));
            std::copy_n(samples.data(), block.width(), sums.at(c, block.left(), block.top() + y));
        }
    }
}

CellPlanes sumOverDisc(const CellPlanes &cells, const DiscSummer &disc, const QRegion &needed,
                       const PrepareContext &context)
{
    CellPlanes sums(needed.boundingRect(), cells.channels());
    const std::vector<QRect> blocks = blocksOf(sums.rect(), DiscSummer::kBlockWidth, DiscSummer::kBlockHeight, needed);
    context.parallelFor(int(blocks.size()), [&](int i) { sumBlock(cells, disc, blocks[std::size_t(i)], sums); });
    return sums;
}

void drawCells(const CellPlanes &cells, const CellGrid &grid, Tile &result)
{
    constexpr std::size_t kRing = 8; // more than kTaps, so that a row is still there when it is next asked for
    const QRect &rect = result.rect();
    const RowExpander expander(grid, rect);
    const std::size_t size = expander.rowSize(rect.width());
    std::vector<float> ring(kRing * size);
    for (int c = 0; c < result.channels(); ++c) {
        int expanded = grid.cellsFor(rect).top() - 1; // the last row of cells in the ring
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            const CellGrid::Place place = grid.placeOfRow(y);
            expanded = std::max(expanded, place.cell - 1);
            while (expanded < place.cell + kernels::kTaps - 1) {
                ++expanded;
                expander.expand(cells.at(c, expander.left(), expanded),
                                ring.data() + (std::size_t(expanded) % kRing) * size);
            }
            const float *rows[kernels::kTaps];
            for (int t = 0; t < kernels::kTaps; ++t)
                rows[t] = ring.data() + (std::size_t(place.cell + t) % kRing) * size + expander.offset();
            kernels::combineRows(rows, place.taps, result.row(c, y), std::size_t(rect.width()));
        }
    }
}

} // namespace hazelmark
