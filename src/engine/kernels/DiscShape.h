#pragma once

#include <cstdint>
#include <vector>

namespace hazelmark::kernels {

/// The part (0..1) of the unit square around (x, y) that a disc of `radius` around the origin covers; exact but for
/// the rounding of double. 0 < radius < 1e6.
double discCoverage(double radius, int x, int y);

/// The disc as columns of whole and broken pixels, for summing with vertical prefix sums.
///
/// Column dx reaches from `end` below to `end` above the middle pixel, in units of 1 / fractions pixel: the samples
/// between prefix rows `fractions * (y + 1) + end` and `fractions * y - end` of the pixel row y. Where the outline is
/// steep, so that it crosses several pixels of a column, the column stands several times, each time with the part of
/// the weight and the end of a strip of it: that lays the broken coverage of the outline out as steps.
struct DiscSpans
{
    struct Span
    {
        int dx;
        int end;
    };
    /// Spans of equal weight. Weights are powers of two.
    struct Group
    {
        std::uint32_t weight;
        std::vector<Span> spans;
    };

    int reach = 0;     ///< columns on either side of the middle one, and pixel rows above and below it, at most
    int fractions = 1; ///< prefix rows a pixel
    std::vector<Group> groups;
    /// The sum over a picture of ones, in the units of the weights. Times 65535 it is below 2^32.
    std::uint32_t total = 0;
};

/// The largest radius for makeDiscSpans(); above, the total outgrows 32 bits.
constexpr double kLargestSummedRadius = 48.0;

/// 4 <= radius <= kLargestSummedRadius. Several layouts, cheap ones first, are tried until the error of the means, of 1
/// and on what is hardest, is at most `goodEnough`; if none is, the best of them is taken. Ends are rounded so that
/// what one column gains the next ones lose.
DiscSpans makeDiscSpans(double radius, double goodEnough);

} // namespace hazelmark::kernels
