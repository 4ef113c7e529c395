// The inner loops of the disc blur against plain twins, on every instruction set of this machine.

#include "KernelTest.h"
#include "Pictures.h"
#include "kernels/CoarseRows.h"
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
    return testing::randomValues(count, seed, kRoom);
}

std::vector<std::uint16_t> randomSamples(std::size_t count, unsigned seed, unsigned full)
{
    std::mt19937 random(seed);
    std::vector<std::uint16_t> samples(count);
    for (std::uint16_t &sample : samples)
        sample = std::uint16_t(random() % 5 == 0 ? full : random() % (full + 1));
    return samples;
}

/// kTaps random rows and where each begins.
struct Rows
{
    Rows(std::size_t width, unsigned seed)
    {
        for (std::size_t t = 0; t < kTaps; ++t) {
            stored.push_back(randomValues(width, seed + unsigned(t)));
            starts[t] = stored.back().data();
        }
    }
    std::vector<std::vector<float>> stored;
    const float *starts[kTaps];
};

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

TEST_P(DiscKernels, PrefixRowsGoOnFromTheOneBeforeAndWrapAround)
{
    const std::vector<std::uint16_t> samples = randomSamples(width() + kRoom, 3, 65535);
    for (const int fractions : {1, 2, 8}) {
        const std::size_t stride = upTo(kNarrowGrain, width());
        std::vector<std::uint32_t> wide((std::size_t(fractions) + 1) * stride, 4294900000u);
        std::vector<std::uint16_t> narrow((std::size_t(fractions) + 1) * stride, 65000);
        appendPrefixRows(samples.data(), wide.data(), stride, fractions, width());
        appendPrefixRows(samples.data(), narrow.data(), stride, fractions, width());
        for (std::size_t f = 0; f <= std::size_t(fractions); ++f) {
            expectEach(&wide[f * stride], 0, [&](auto i) { return 4294900000u + std::uint32_t(f) * samples[i]; });
            expectEach(&narrow[f * stride], 0, [&](auto i) { return std::uint16_t(65000u + f * samples[i]); });
        }
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

TEST_P(DiscKernels, WeightsOneByOneAddUp)
{
    constexpr int kReach = kMostReach;
    const std::vector<float> weights = randomValues((kReach + 1) * (kReach + 1), 6);
    const std::size_t stride = upTo(kRowGrain, width() + 2 * kReach);
    const std::vector<float> plane = randomValues(stride * (2 * kReach + 1), 7);
    std::vector<float> means(width() + kRoom, kUntouched);
    weighRow(plane.data() + kReach * stride, stride, weights.data(), kReach, means.data(), width());
    expectEach(means.data(), 2e-5, [&](std::size_t i) {
        double sum = 0.0;
        for (int dy = -kReach; dy <= kReach; ++dy)
            for (int dx = -kReach; dx <= kReach; ++dx)
                sum += double(weights[std::size_t(std::abs(dy) * (kReach + 1) + std::abs(dx))]) *
                       plane[std::size_t(kReach + dy) * stride + i + std::size_t(kReach + dx)];
        return sum;
    });
    EXPECT_EQ(means[upTo(kRowGrain, width())], kUntouched);
}

TEST_P(DiscKernels, CellsAreMeansOfTheirPixels)
{
    for (const int scale : {2, 4, 8, 16}) {
        const std::size_t pixels = width() * std::size_t(scale);
        const std::vector<float> lower = randomValues(pixels, 8), upper = randomValues(pixels, 9);
        std::vector<float> sums(pixels + 2 * kRowGrain * std::size_t(scale));
        std::vector<std::uint16_t> cells(width() + kRoom);
        addRow(lower.data(), sums.data(), true, pixels);
        addRow(upper.data(), sums.data(), false, pixels);
        averageCells(sums.data(), scale, 65535.0f / (2.0f * float(scale)), cells.data(), width());
        expectEach(cells.data(), 0.51, [&](std::size_t k) {
            double sum = 0.0;
            for (std::size_t x = k * std::size_t(scale); x < (k + 1) * std::size_t(scale); ++x)
                sum += double(lower[x]) + double(upper[x]);
            return sum * 65535.0 / (2.0 * scale);
        });
    }
}

TEST_P(DiscKernels, CellsAreDrawnUpByTheirTaps)
{
    const std::vector<std::uint16_t> stored = randomSamples(width() + 2 * kRoom, 10, 65535);
    const std::uint16_t *cells = stored.data() + kRoom / 2;
    const std::vector<float> weights = randomValues(kTaps * 8, 11);
    const auto drawn = [&](std::ptrdiff_t first, const float *taps) {
        double sum = 0.0;
        for (int t = 0; t < kTaps; ++t)
            sum += double(taps[t]) * cells[first + t] / 65535.0;
        return sum;
    };
    for (const int scale : {2, 4}) {
        Taps taps[4];
        for (int q = 0; q < scale; ++q)
            std::copy_n(weights.begin() + q * kTaps, kTaps, taps[q].begin());
        std::vector<float> values((upTo(kRowGrain, width()) + 1) * std::size_t(scale), kUntouched);
        expandRow(cells, taps, scale, values.data(), width());
        for (std::size_t x = 0; x < width() * std::size_t(scale); ++x) {
            const std::size_t q = x % std::size_t(scale);
            const std::ptrdiff_t first = std::ptrdiff_t(x) / scale - (q < std::size_t(scale) / 2 ? 3 : 2);
            EXPECT_NEAR(values[x], drawn(first, taps[q].data()), 1e-6) << scale;
        }
        EXPECT_EQ(values[upTo(kRowGrain, width()) * std::size_t(scale)], kUntouched);
    }

    const Rows taps(width(), 20);
    const std::size_t middle = width() / 3;
    const CellRun runs[] = {{0, middle, -3}, {middle, width(), 4}};
    std::vector<float> values(width() + kRoom);
    expandWideRow(cells, runs, 2, taps.starts, values.data());
    expectEach(values.data(), 1e-6, [&](std::size_t x) {
        float own[kTaps];
        for (int t = 0; t < kTaps; ++t)
            own[t] = taps.starts[t][x];
        return drawn(x < middle ? -3 : 4, own);
    });
}

TEST_P(DiscKernels, RowsOfCellsAreCombinedAndClamped)
{
    const Taps taps = {-0.4f, 0.3f, 0.9f, 1.2f, -0.3f, 0.1f};
    const Rows rows(width(), 30);
    std::vector<float> values(width() + kRoom);
    combineRows(rows.starts, taps, values.data(), width());
    expectEach(values.data(), 1e-6, [&](std::size_t i) {
        double sum = 0.0;
        for (std::size_t t = 0; t < kTaps; ++t)
            sum += double(taps[t]) * rows.starts[t][i];
        return std::clamp(sum, 0.0, 1.0);
    });
}

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, DiscKernels, testing::everyTargetAndWidth(), testing::targetAndWidth);

} // namespace
} // namespace hazelmark::kernels
