// The inner loops of the disc blur against plain twins, on every instruction set of this machine.

#include "KernelTest.h"
#include "kernels/DiscSumRows.h"
#include "kernels/DiscWeightRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace hazelmark::kernels {
namespace {

constexpr std::size_t kRoom = 64; // behind every row, for what the kernels may touch there
constexpr float kUntouched = -7.0f;

std::size_t upTo(std::size_t grain, std::size_t width)
{
    return (width + grain - 1) / grain * grain;
}

std::vector<float> randomValues(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<float> values(count + kRoom, 0.5f);
    std::generate_n(values.begin(), count, [&] { return float(random() >> 8) / float(1 << 24); });
    return values;
}

std::vector<std::uint16_t> randomSamples(std::size_t count, unsigned seed, unsigned full)
{
    std::mt19937 random(seed);
    std::vector<std::uint16_t> samples(count);
    for (std::uint16_t &sample : samples)
        sample = std::uint16_t(random() % 5 == 0 ? full : random() % (full + 1));
    return samples;
}

using DiscKernels = testing::KernelTest;

TEST_P(DiscKernels, SamplesAreRoundedAndClamped)
{
    std::vector<float> values = randomValues(width(), 1);
    const float odd[] = {-0.5f,  1.5f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                         1e-40f, 1.0f};
    std::copy_n(odd, std::min<std::size_t>(std::size(odd), width()), values.begin());
    std::vector<std::uint16_t> samples(width() + kRoom);
    quantizeRow(values.data(), samples.data(), width());
    expectEach(samples.data(), 0, [&](std::size_t i) {
        return std::isnan(values[i]) ? 0 : std::lrintf(std::clamp(values[i], 0.0f, 1.0f) * 65535.0f);
    });
}

TEST_P(DiscKernels, EightBitSamplesAreToldFromOthers)
{
    std::vector<float> values(width() + kRoom, 0.3f); // what lies behind the row does not count
    for (std::size_t i = 0; i < width(); ++i)
        values[i] = float(i % 256) * (1.0f / 255.0f);
    std::vector<std::uint16_t> samples(width() + kRoom);
    ASSERT_TRUE(quantizeRow8(values.data(), samples.data(), width()));
    expectEach(samples.data(), 0, [](std::size_t i) { return i % 256; });
    for (const std::size_t at : {std::size_t(0), width() / 2, width() - 1}) {
        std::vector<float> deep = values;
        deep[at] = (257.0f * float(at % 255) + 1.0f) / 65535.0f;
        EXPECT_FALSE(quantizeRow8(deep.data(), samples.data(), width())) << at;
    }
}

/// The sum of one pixel, from samples alone: every column's whole pixels and the broken ones at its ends.
double plainSum(const DiscSpans &disc, const std::vector<std::uint16_t> &samples, std::size_t columns, int x, int y)
{
    double sum = 0.0;
    for (const DiscSpans::Group &group : disc.groups) {
        for (const DiscSpans::Span &span : group.spans) {
            const double end = 0.5 + double(span.end) / disc.fractions;
            for (int dy = -disc.reach; dy <= disc.reach; ++dy) {
                const double part = std::min(end, dy + 0.5) - std::max(-end, dy - 0.5);
                const std::size_t at =
                    std::size_t(y + disc.reach + dy) * columns + std::size_t(x + disc.reach + span.dx);
                sum += group.weight * std::max(0.0, part) * samples[at];
            }
        }
    }
    return sum * disc.fractions / double(disc.total);
}

TEST_P(DiscKernels, BlockSumsAreThoseOfTheSpans)
{
    constexpr int kHeight = 3;
    for (const double radius : {4.5, 11.3, 21.9, 47.9}) {
        const DiscSpans disc = makeDiscSpans(radius, 0.3 / 255.0);
        const std::size_t columns = width() + 2 * std::size_t(disc.reach);
        const std::size_t rows = std::size_t(kHeight + 2 * disc.reach);
        const std::size_t stride = upTo(kNarrowGrain, columns) + kNarrowGrain;
        const DiscSum sum(disc, stride);
        const std::size_t meansStride = upTo(kRowGrain, width());
        for (const unsigned full : {255u, 65535u}) {
            if (full == 255 && sum.narrowRun() == 0)
                continue;
            const std::vector<std::uint16_t> samples = randomSamples(columns * rows, 5, full);
            std::vector<std::uint32_t> wide((rows * std::size_t(disc.fractions) + 2) * stride, 0);
            std::vector<std::uint16_t> narrow(wide.size(), 0);
            std::vector<std::uint16_t> row(stride);
            for (std::size_t y = 0; y < rows; ++y) {
                std::copy_n(samples.begin() + std::ptrdiff_t(y * columns), columns, row.begin());
                appendPrefixRows(row.data(), wide.data() + y * sum.pixelStride(), stride, disc.fractions, columns);
                appendPrefixRows(row.data(), narrow.data() + y * sum.pixelStride(), stride, disc.fractions, columns);
            }
            std::vector<float> means(kHeight * meansStride + kRoom, kUntouched);
            if (full == 255)
                sum.sumBlock(narrow.data(), means.data(), meansStride, int(width()), kHeight);
            else
                sum.sumBlock(wide.data(), means.data(), meansStride, int(width()), kHeight);
            for (int y = 0; y < kHeight; ++y)
                for (std::size_t x = 0; x < width(); x += 1 + width() / 9)
                    EXPECT_NEAR(means[std::size_t(y) * meansStride + x],
                                plainSum(disc, samples, columns, int(x), y) / full, 3e-7)
                        << radius << ", " << full;
            EXPECT_EQ(means[kHeight * meansStride], kUntouched);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, DiscKernels, testing::everyTargetAndWidth(), testing::targetAndWidth);

} // namespace
} // namespace hazelmark::kernels
