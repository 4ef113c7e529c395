#pragma once

#include "kernels/DiscSumRows.h"

#include <functional>
#include <memory>
#include <vector>

namespace hazelmark {

/// Sums blocks of a picture over a disc: rows of samples become prefix sums in a buffer that is small enough for the
/// second-level cache, and the prefix sums means.
class DiscSummer
{
public:
    /// The largest block that is summed at a time.
    static constexpr int kBlockWidth = 256;
    static constexpr int kBlockHeight = 128;

    /// The buffers of one thread, for as many blocks as it likes.
    class Scratch
    {
        friend class DiscSummer;
        std::unique_ptr<std::uint32_t[]> prefix;
        std::vector<std::uint16_t> row;
    };

    /// See kernels::makeDiscSpans().
    DiscSummer(double radius, double goodEnough);

    /// How far beyond a block its samples reach, each way.
    int reach() const { return m_disc.reach; }

    Scratch makeScratch() const;

    /// `samples(y, row)` writes the width + 2 * reach() samples of row y (-reach() <= y < height + reach(), in order),
    /// starting reach() columns left of the block; it may write up to the next multiple of kRowGrain. The means 0..1
    /// go to rows `stride` apart, written up to the next multiple of kRowGrain.
    void sum(Scratch &scratch, int width, int height, const std::function<void(int, std::uint16_t *)> &samples,
             float *means, std::size_t stride) const;

    /// The same at twice the speed for samples 0..255. `samples` returns false when it has a row that is not made of
    /// such: then the sum is given up, false is returned and no mean is written.
    bool sumNarrow(Scratch &scratch, int width, int height, const std::function<bool(int, std::uint16_t *)> &samples,
                   float *means, std::size_t stride) const;

private:
    kernels::DiscSpans m_disc;
    std::size_t m_stride;
    kernels::DiscSum m_sum;
};

} // namespace hazelmark
