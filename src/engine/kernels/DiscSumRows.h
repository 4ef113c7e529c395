#pragma once

#include "DiscShape.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hazelmark::kernels {

// Disc sums from vertical prefix sums. Samples are whole numbers and prefixes are taken modulo 2^32 or 2^16, so that
// one may wrap around as often as it likes: differences of two come out exact, and the same on every instruction set
// and whatever part of a picture is summed at once.
//
// Wide sums take samples 0..65535. Narrow ones take 0..255, pictures of 8 bits, and twice as many pixels at a time.

/// Rows that the functions here read and write may be touched up to the next multiple of this many elements.
constexpr std::size_t kRowGrain = 16;
constexpr std::size_t kNarrowGrain = 32;

/// Values 0..1 to samples 0..65535, rounded to nearest; what lies outside is clamped, not a number becomes 0.
void quantizeRow(const float *values, std::uint16_t *samples, std::size_t width);

/// Values 0..1 to samples 0..255. False, with samples of no use, when some value is no multiple of 1/255.
bool quantizeRow8(const float *values, std::uint16_t *samples, std::size_t width);

/// Continues a prefix, whose last row so far is `prefix`, by one row of pixels: writes the `fractions` rows after it,
/// `stride` elements apart. Row f holds prefix + f * samples.
void appendPrefixRows(const std::uint16_t *samples, std::uint32_t *prefix, std::size_t stride, int fractions,
                      std::size_t width);
void appendPrefixRows(const std::uint16_t *samples, std::uint16_t *prefix, std::size_t stride, int fractions,
                      std::size_t width);

/// A DiscSpans with its spans as distances in a prefix buffer of one row stride.
class DiscSum
{
public:
    struct Distance
    {
        std::ptrdiff_t above;
        std::ptrdiff_t below;
    };
    struct Group
    {
        std::uint32_t weight;
        std::vector<Distance> spans;
    };

    /// `stride` of the prefix rows, in elements.
    DiscSum(const DiscSpans &disc, std::size_t stride);

    /// The means over the disc, 0..1, for a block of pixels, in rows `meansStride` apart. `prefix` is where the sums
    /// start: `reach` columns left of and `reach` rows of pixels below the block's first pixel. Columns of `means` may
    /// be written up to the next multiple of kRowGrain, those of `prefix` read up to kNarrowGrain more than needed.
    void sumBlock(const std::uint32_t *prefix, float *means, std::size_t meansStride, int width, int height) const;
    void sumBlock(const std::uint16_t *prefix, float *means, std::size_t meansStride, int width, int height) const;

    const std::vector<Group> &groups() const { return m_groups; }
    /// From one row of pixels to the next, in elements of the prefix.
    std::size_t pixelStride() const { return m_pixelStride; }
    /// How many narrow differences may be added before they have to be widened; 0: not even one fits, no narrow sums.
    int narrowRun() const { return m_narrowRun; }
    std::uint32_t total() const { return m_total; }

private:
    std::vector<Group> m_groups;
    std::size_t m_pixelStride;
    int m_narrowRun;
    std::uint32_t m_total;
};

} // namespace hazelmark::kernels
