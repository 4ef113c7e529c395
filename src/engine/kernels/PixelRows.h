#pragma once

#include <cstddef>
#include <cstdint>

namespace hazelmark::kernels {

// Rows of pixels between the interleaved samples of a bitmap and the planar floats of a tile.
//
// Unpacking gives v / 255 (8 bits) or v / 65535 (16 bits). Packing clamps to 0..1 and rounds to the nearest sample,
// halves to the even one; not a number becomes 0. Packing what was unpacked gives the same samples.
// `planes[c]` is where channel c of the row's first pixel lives. Pixel rows need no alignment and are never touched
// past their end.

/// RGBX or RGBA, 4 samples a pixel, to `channels` (3 or 4) planes.
void unpackRgb8(const std::uint8_t *pixels, float *const *planes, int channels, std::size_t width);
void unpackRgb16(const std::uint16_t *pixels, float *const *planes, int channels, std::size_t width);
/// One sample a pixel to one plane.
void unpackGray8(const std::uint8_t *pixels, float *plane, std::size_t width);
void unpackGray16(const std::uint16_t *pixels, float *plane, std::size_t width);
/// Sample `channel` of every 4-sample pixel to one plane.
void unpackChannel8(const std::uint8_t *pixels, int channel, float *plane, std::size_t width);
void unpackChannel16(const std::uint16_t *pixels, int channel, float *plane, std::size_t width);

/// 3 planes to RGBX (the fourth sample full) or 4 to RGBA.
void packRgb8(const float *const *planes, int channels, std::uint8_t *pixels, std::size_t width);
void packRgb16(const float *const *planes, int channels, std::uint16_t *pixels, std::size_t width);

/// Multiplies (divides) the three colour rows by the alpha row in place; division by 0 gives 0. The rows' padding is
/// read and overwritten.
void premultiply(float *const *colours, const float *alpha, std::size_t width);
void unpremultiply(float *const *colours, const float *alpha, std::size_t width);

} // namespace hazelmark::kernels
