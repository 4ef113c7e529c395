#include "DiscSummer.h"

#include <algorithm>

namespace hazelmark {

namespace {

/// An odd number of cache lines, wide or narrow, so that the rows of a column do not compete for the same places in
/// the cache.
std::size_t strideFor(std::size_t columns)
{
    const std::size_t lines = columns / kernels::kNarrowGrain + 2;
    return (lines | 1) * kernels::kNarrowGrain;
}

/// Writes the prefix of a block, pixel row by pixel row, as long as there are samples.
template <typename Prefix, typename Samples>
bool makePrefix(const kernels::DiscSpans &disc, Prefix *prefix, std::uint16_t *row, std::size_t stride, int width,
                int height, const Samples &samples)
{
    const std::size_t pixelStride = std::size_t(disc.fractions) * stride;
    std::fill_n(prefix, stride, Prefix(0));
    for (int y = 0; y < height + 2 * disc.reach; ++y) {
        if (!samples(y - disc.reach, row))
            return false;
        kernels::appendPrefixRows(row, prefix + std::size_t(y) * pixelStride, stride, disc.fractions,
                                  std::size_t(width + 2 * disc.reach));
    }
    return true;
}

} // namespace

DiscSummer::DiscSummer(double radius, double goodEnough)
    : m_disc(kernels::makeDiscSpans(radius, goodEnough))
    , m_stride(strideFor(kBlockWidth + 2 * std::size_t(m_disc.reach)))
    , m_sum(m_disc, m_stride)
{
}

DiscSummer::Scratch DiscSummer::makeScratch() const
{
    Scratch scratch;
    const std::size_t rows = std::size_t(m_disc.fractions) * std::size_t(kBlockHeight + 2 * m_disc.reach);
    scratch.prefix.reset(new std::uint32_t[(rows + 2) * m_stride]);
    scratch.row.resize(m_stride);
    return scratch;
}

void DiscSummer::sum(Scratch &scratch, int width, int height, const std::function<void(int, std::uint16_t *)> &samples,
                     float *means, std::size_t stride) const
{
    const auto given = [&](int y, std::uint16_t *row) {
        samples(y, row);
        return true;
    };
    makePrefix(m_disc, scratch.prefix.get(), scratch.row.data(), m_stride, width, height, given);
    m_sum.sumBlock(scratch.prefix.get(), means, stride, width, height);
}

bool DiscSummer::sumNarrow(Scratch &scratch, int width, int height,
                           const std::function<bool(int, std::uint16_t *)> &samples, float *means,
                           std::size_t stride) const
{
    auto *const prefix = reinterpret_cast<std::uint16_t *>(scratch.prefix.get());
    if (m_sum.narrowRun() == 0 || !makePrefix(m_disc, prefix, scratch.row.data(), m_stride, width, height, samples))
        return false;
    m_sum.sumBlock(prefix, means, stride, width, height);
    return true;
}

} // namespace hazelmark
