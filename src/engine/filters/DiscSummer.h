#pragma once

#include "kernels/DiscSumRows.h"

#include <functional>

namespace hazelmark {

/// Sums blocks of a picture over a disc: rows of 16-bit samples become prefix sums in a buffer of its own, small
/// enough for the second-level cache, and the prefix sums means.
class DiscSummer
{
public:
    /// The largest block that sum() takes.
    static constexpr int kBlockWidth = 128;
    static constexpr int kBlockHeight = 64;

    explicit DiscSummer(double radius);

    /// How far beyond a block its samples reach, each way.
    int reach() const { return m_disc.reach; }

    /// `samples(y, row)` writes the width + 2 * reach() samples of row y (-reach() <= y < height + reach()), starting
    /// reach() columns left of the block; it may write up to the next multiple of kRowGrain.
    /// `means(y)` is where the means 0..1 of row y go (0 <= y < height, in order), writable up to the next multiple
    /// of kRowGrain. May be called by many threads at once.
    void sum(int width, int height, const std::function<void(int, std::uint16_t *)> &samples,
             const std::function<float *(int)> &means) const;

private:
    kernels::DiscSpans m_disc;
    std::size_t m_stride;
    kernels::DiscSum m_sum;
};

} // namespace hazelmark
