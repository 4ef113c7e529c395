#pragma once

#include <cstddef>

namespace hazelmark::kernels {

// Rows of straight values 0..1, 64-byte aligned and padded to a multiple of 16 floats; the padding is read and
// overwritten.

/// result = weight x foreground + (1 - weight) x background, opaque. Where the weight is 0 the result is the
/// background's value to the bit. `result` may be one of the inputs.
void blendOpaque(const float *foreground, const float *background, const float *weight, float *result,
                 std::size_t width);

/// The same for pixels with alpha: four rows each (R, G, B, A), mixed premultiplied, handed back straight. Where the
/// weight is 0 all four values are the background's to the bit, colours under transparent pixels included.
void blendWithAlpha(const float *const *foreground, const float *const *background, const float *weight,
                    float *const *result, std::size_t width);

/// Multiplies a row of sRGB-encoded values by `gain` (0..1) in linear light: decode, multiply, encode.
/// The curve is that of IEC 61966-2-1, its straight toe included.
void scaleLinearLight(float *row, float gain, std::size_t width);

} // namespace hazelmark::kernels
