#pragma once

#include <cstddef>

namespace hazelmark::kernels {

/// One row of the sum over a small disc, weight by weight: `weights` holds (reach + 1) x (reach + 1) of them, that of
/// the pixel (|dx|, |dy|) at dy * (reach + 1) + dx. `middle` is the first pixel of the row in a plane of rows
/// `stride` apart, with `reach` readable pixels all around the row.
void weighRow(const float *middle, std::size_t stride, const float *weights, int reach, float *means,
              std::size_t width);

} // namespace hazelmark::kernels
