#pragma once

#include "DiscShape.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hazelmark::kernels {

// Disc sums from vertical prefix sums. Samples are integers 0..65535 and sums are taken modulo 2^32, so that a prefix
// may wrap around as often as it likes: differences of two come out exact, and the same on every instruction set and
// whatever part of a picture is summed at once.

/// Rows of floats and buffers that the functions here write may be overwritten up to the next multiple of this.
constexpr std::size_t kRowGrain = 16;

/// Values 0..1 to samples 0..65535, rounded to nearest; what lies outside is clamped, not a number becomes 0.
void quantizeRow(const float *values, std::uint16_t *samples, std::size_t width);

/// Continues a prefix below which `prefix` is the last row so far by one pixel row: writes the `fractions` rows after
/// it, at distance `stride`. Row f holds prefix + f * samples.
void appendPrefixRows(const std::uint16_t *samples, std::uint32_t *prefix, std::size_t stride, int fractions,
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

    DiscSum(const DiscSpans &disc, std::size_t stride);

    /// The means over the disc, 0..1, for a row of `width` pixels. `prefix` is where the sum starts: `reach` columns
    /// left of and `reach` pixel rows below the first of them. Reads up to kRowGrain - 1 columns more than it needs.
    void sumRow(const std::uint32_t *prefix, float *means, std::size_t width) const;

    const std::vector<Group> &groups() const { return m_groups; }
    float scale() const { return m_scale; }

private:
    std::vector<Group> m_groups;
    float m_scale;
};

} // namespace hazelmark::kernels
