#pragma once

#include <array>
#include <cstdint>

namespace hazelmark::kernels {

/// How many pixels are blended at once at most.
constexpr int kMaxStampLanes = 16;

/// One row of one stamp: where its pixels sample the tip, and how the samples are blended into the canvas.
struct StampRow
{
    /// The tip's row at this height, premultiplied R, G, B, A in 0..1; for a white tip all four are the same row.
    /// Behind the last texel that is used there are kPadding of any finite value, which are read and not used.
    std::array<const float *, 4> tip;
    static constexpr int kPadding = 2 * kMaxStampLanes + 1;
    bool white; ///< only the last of the four rows is read

    /// How far neighbouring pixels are apart on the tip: by no more than 0.999 texels, so that a rounding up still is
    /// below 1; by no more than 1.999; by any number.
    enum class Spacing { Dense, Near, Wide };
    /// For each pixel the texel left of its place and its distance from there, 0..1. Never falls along the row.
    const std::int32_t *texel;
    const float *fraction;
    Spacing spacing;

    /// What a sample of 1 adds to each component of a pixel, 0..255: the colour when painting, nothing when erasing.
    std::array<float, 4> addend;
    /// What share of the pixel a sample of 1 in the alpha row takes away.
    float alpha;

    /// How often it is stamped.
    int times = 1;
};

/// Blends `count` pixels of a stamp: pixel = sample * addend + pixel * (1 - sample alpha * alpha), rounded once to
/// the nearest of 0..255. `pixels` is 8-bit premultiplied RGBA, 4 bytes a pixel, of any alignment. The sample is the
/// linear interpolation between the texels left and right of the pixel's place.
void blendStampRow(std::uint8_t *pixels, int count, const StampRow &row);

/// out[i] = above[i] + share * (below[i] - above[i]) for i in 0..count-1: exactly the value between two equal ones.
void mixRows(const float *above, const float *below, float share, float *out, int count);

} // namespace hazelmark::kernels
