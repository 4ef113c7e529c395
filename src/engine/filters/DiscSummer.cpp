#include "DiscSummer.h"

#include <algorithm>
#include <memory>

namespace hazelmark {

namespace {

/// An odd number of cache lines, so that the rows of a column do not compete for the same places in the cache.
std::size_t strideFor(std::size_t columns)
{
    const std::size_t lines = (columns + kernels::kRowGrain - 1) / kernels::kRowGrain + 1;
    return (lines | 1) * kernels::kRowGrain;
}

} // namespace

DiscSummer::DiscSummer(double radius)
    : m_disc(kernels::makeDiscSpans(radius))
    , m_stride(strideFor(kBlockWidth + 2 * std::size_t(m_disc.reach)))
    , m_sum(m_disc, m_stride)
{
}

void DiscSummer::sum(int width, int height, const std::function<void(int, std::uint16_t *)> &samples,
                     const std::function<float *(int)> &means) const
{
    const int reach = m_disc.reach;
    const std::size_t fractions = std::size_t(m_disc.fractions);
    const std::size_t columns = std::size_t(width + 2 * reach);
    const std::size_t pixelStride = fractions * m_stride;
    const std::unique_ptr<std::uint32_t[]> prefix(
        new std::uint32_t[pixelStride * std::size_t(height + 2 * reach) + 2 * m_stride]);
    std::vector<std::uint16_t> row(m_stride);
    std::fill_n(prefix.get(), m_stride, 0);
    for (int y = 0; y < height + 2 * reach; ++y) {
        samples(y - reach, row.data());
        kernels::appendPrefixRows(row.data(), prefix.get() + std::size_t(y) * pixelStride, m_stride, m_disc.fractions,
                                  columns);
    }
    for (int y = 0; y < height; ++y)
        m_sum.sumRow(prefix.get() + std::size_t(y) * pixelStride, means(y), std::size_t(width));
}

} // namespace hazelmark
