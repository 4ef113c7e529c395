#pragma once

#include <cstddef>

namespace hazelmark::kernels {

/// out[i] = sum over t of weights[i * taps + t] x row[first[i] + t]: one row at another width. `row` is where input
/// pixel 0 would be.
void scaleRow(const float *row, const int *first, const float *weights, int taps, float *out, std::size_t width);

/// out[i] = sum over t of weights[t] x rows[t][i]. Rows are padded to a multiple of 16 floats, which is read and
/// overwritten.
void weighRows(const float *const *rows, const float *weights, int taps, float *out, std::size_t width);

/// Brings a padded row into 0..1; what is within 2^-20 of 1 becomes 1, so that rounding in a sum of weights leaves
/// full areas full.
void clampToUnit(float *row, std::size_t width);

} // namespace hazelmark::kernels
