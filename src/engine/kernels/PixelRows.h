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

/// The kernels for one kind of samples.
template <typename Sample>
struct SampleRows
{
    /// RGBX or RGBA, 4 samples a pixel, to `channels` (3 or 4) planes.
    void (*unpackRgb)(const Sample *pixels, float *const *planes, int channels, std::size_t width);
    /// One sample a pixel to one plane; or any samples, as they come.
    void (*unpackGray)(const Sample *pixels, float *plane, std::size_t width);
    /// Sample `channel` of every 4-sample pixel to one plane.
    void (*unpackChannel)(const Sample *pixels, int channel, float *plane, std::size_t width);
    /// 3 planes to RGBX (the fourth sample full) or 4 to RGBA.
    void (*packRgb)(const float *const *planes, int channels, Sample *pixels, std::size_t width);
    /// Values to samples, as they come.
    void (*pack)(const float *values, Sample *samples, std::size_t count);
};

struct PixelRows
{
    SampleRows<std::uint8_t> eight;
    SampleRows<std::uint16_t> sixteen;
    /// Multiplies (divides) the three colour rows by the alpha row in place; division by 0 gives 0. The rows' padding
    /// is read and overwritten.
    void (*premultiply)(float *const *colours, const float *alpha, std::size_t width);
    void (*unpremultiply)(float *const *colours, const float *alpha, std::size_t width);

    template <typename Sample>
    const SampleRows<Sample> &of() const
    {
        if constexpr (sizeof(Sample) == 1)
            return eight;
        else
            return sixteen;
    }
};

/// Those of the best instruction set that this machine has.
const PixelRows &pixelRows();

} // namespace hazelmark::kernels
