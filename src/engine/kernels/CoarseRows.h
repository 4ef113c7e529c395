#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace hazelmark::kernels {

// Between rows of pixels and rows of cells, each the mean of scale x scale pixels, scale a power of two. Cells are
// samples 0..65535, pixels values 0..1.

/// A pixel between cells is a weighted sum of this many of them each way: three before and three after the point
/// where it lies.
constexpr int kTaps = 6;
using Taps = std::array<float, kTaps>;

/// sums[i] += values[i], or sums[i] = values[i] for the first row.
void addRow(const float *values, float *sums, bool first, std::size_t width);

/// `sums`: a row of `cells * scale` columns, overwritten. Writes the sum of every `scale` of them, times `factor`,
/// rounded to nearest, clamped to 0..65535. Both rows are touched up to the next multiple of kRowGrain cells.
void averageCells(float *sums, int scale, float factor, std::uint16_t *samples, std::size_t cells);

/// One row of cells to one row of pixels, for scale 2 and 4. `samples` is cell k = 0, with three readable cells
/// before it and kRowGrain + 3 after the last. For the pixels q = 0 .. scale - 1 of cell k, taps[q][i] is the weight
/// of cell k + i - 3 when q < scale / 2, of k + i - 2 otherwise. Writes whole multiples of kRowGrain cells.
void expandRow(const std::uint16_t *samples, const Taps *taps, int scale, float *values, std::size_t cells);

/// Neighbouring pixels begin .. end - 1 of a row that lie between the same cells.
struct CellRun
{
    std::size_t begin;
    std::size_t end;
    std::ptrdiff_t cell; ///< first of the kTaps cells
};

/// The same for any scale: taps[t][x] is the weight of cell `run.cell + t` for pixel x. Taps are read and values are
/// written up to kRowGrain - 1 past the end of a run; runs are in order.
void expandWideRow(const std::uint16_t *samples, const CellRun *runs, std::size_t count, const float *const *taps,
                   float *values);

/// The sum of kTaps rows, each times its tap, clamped to 0..1.
void combineRows(const float *const *rows, const Taps &taps, float *values, std::size_t width);

} // namespace hazelmark::kernels
