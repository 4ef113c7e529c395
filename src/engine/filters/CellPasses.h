#pragma once

#include "CellGrid.h"
#include "CellPlanes.h"
#include "FilterNode.h"

namespace hazelmark {

class DiscSummer;

// The three passes of a disc blur on a grid of cells.

// A block of pixels that is averaged in one go stays in the second-level cache.
constexpr int kPixelBlockWidth = 512;
constexpr int kPixelBlockHeight = 64;

/// The means of the input's pixels over the cells, premultiplied: of all cells of `grid` that lie in blocks which
/// `needed` touches; the others stay unset. `needed` counts cells; outside grid.cells() nothing is needed.
CellPlanes averageIntoCells(const CellGrid &grid, const QRegion &needed, int channels, const PrepareContext &context);

/// The same of one block of cells, no larger than kPixelBlockWidth x kPixelBlockHeight pixels.
void averageBlock(const CellGrid &grid, const QRect &block, const TileReader &inputs, CellPlanes &cells);

/// How far a disc of spans may be off, of 1, where it is summed over cells.
constexpr double kGoodOverCells = 0.35 / 255.0;

/// The means over the disc for the cells of `needed`. Outside its rectangle every cell of `cells` equals the nearest.
CellPlanes sumOverDisc(const CellPlanes &cells, const DiscSummer &disc, const QRegion &needed,
                       const PrepareContext &context);

/// The same of one block, no larger than DiscSummer takes.
void sumBlock(const CellPlanes &cells, const DiscSummer &disc, const QRect &block, CellPlanes &sums);

/// Draws cells up to pixels. `cells` holds grid.cellsFor(result.rect()).
void drawCells(const CellPlanes &cells, const CellGrid &grid, Tile &result);

} // namespace hazelmark
