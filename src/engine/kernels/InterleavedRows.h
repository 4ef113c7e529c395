#pragma once

#include <cstddef>
#include <cstdint>

namespace hazelmark::kernels {

// Rows of pixels of four floats each, R, G, B, A, values 0..1. The floats are padded to a multiple of 16, which may be
// read and overwritten.

/// out[i] = sum over t of weights[i * taps + t] x the pixel first[i] + t of `row`, which is where input pixel 0 would
/// be: one row at another width.
void scalePixels(const float *row, const int *first, const float *weights, int taps, float *out, std::size_t width);

/// pixels[i] += weights[i] x (over[i] - pixels[i]), for all four. A weight of 0 leaves a pixel as it is.
void blendPixels(const float *over, const float *weights, float *pixels, std::size_t width);

/// Multiplies (divides) the colours by alpha; division by 0 gives 0.
void premultiplyPixels(float *pixels, std::size_t width);
void unpremultiplyPixels(float *pixels, std::size_t width);

/// Planes of samples 0..65535, three or four, to pixels; three make opaque ones. The samples are padded to a multiple
/// of 16 as well.
void interleaveSamples(const std::uint16_t *const *planes, int channels, float *pixels, std::size_t width);

} // namespace hazelmark::kernels
