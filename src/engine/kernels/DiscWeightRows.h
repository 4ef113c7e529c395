#pragma once

#include <cstddef>

namespace hazelmark::kernels {

/// The largest reach that weighRow() takes.
constexpr int kMostReach = 5;

/// One row of the sum over a small disc, weight by weight: `weights` holds (reach + 1) x (reach + 1) of them, that of
/// the pixel (|dx|, |dy|) at dy * (reach + 1) + dx. `plane` is the middle row of a plane whose rows are `stride`
/// apart: `reach` columns left of the first pixel, with `reach` rows above and below. The rows of the plane and the
/// means may be touched up to the next multiple of kRowGrain.
void weighRow(const float *plane, std::size_t stride, const float *weights, int reach, float *means, std::size_t width);

} // namespace hazelmark::kernels
