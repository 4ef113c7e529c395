#include "FlippedImage.h"
#include "KernelTest.h"
#include "Pictures.h"
#include "Renderer.h"
#include "Utils.h"
#include "kernels/InterleavedRows.h"
#include "kernels/PixelRows.h"
#include "kernels/ScaleRows.h"
#include "kernels/ToneRows.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace hazelmark {

namespace {

constexpr std::size_t kPadding = 16;

/// A row of floats as tiles have them: aligned and padded.
struct Row
{
    explicit Row(std::size_t width, float value = 0.0f)
        : storage(width + 2 * kPadding, value)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(storage.data());
        data = storage.data() + (64 - address % 64) % 64 / sizeof(float);
    }
    std::vector<float> storage;
    float *data;
};

std::vector<float> randomValues(std::size_t count, unsigned seed)
{
    return testing::randomValues(count, seed, 0);
}

Row rowOf(const std::vector<float> &values)
{
    Row row(values.size());
    std::copy(values.begin(), values.end(), row.data);
    return row;
}

} // namespace

using PixelKernels = testing::KernelTest;

/// Every way from samples to planes and back, with nothing behind the row touched.
template <typename Sample>
void expectSamplesComeBack(std::size_t width, double full)
{
    const kernels::SampleRows<Sample> &kernels = kernels::pixelRows().of<Sample>();
    std::mt19937 random(7);
    std::vector<Sample> pixels(4 * width), grays(width);
    for (Sample &sample : pixels)
        sample = Sample(random() % 3 == 0 ? full : random());
    Row rows[4] = {Row(width), Row(width), Row(width), Row(width)};
    float *const planes[4] = {rows[0].data, rows[1].data, rows[2].data, rows[3].data};
    for (const int channels : {3, 4}) {
        std::vector<Sample> back(4 * width + 4, 77);
        kernels.unpackRgb(pixels.data(), planes, channels, width);
        kernels.packRgb(planes, channels, back.data(), width);
        for (std::size_t i = 0; i < 4 * width; ++i) {
            ASSERT_EQ(back[i], int(i) % 4 < channels ? pixels[i] : Sample(full)) << i;
            ASSERT_TRUE(int(i) % 4 >= channels || std::abs(planes[i % 4][i / 4] - pixels[i] / full) < 1e-7) << i;
        }
        ASSERT_EQ(std::vector<Sample>(back.end() - 4, back.end()), std::vector<Sample>(4, 77));
    }
    std::vector<Sample> packed(width + 1, 77);
    kernels.unpackGray(pixels.data(), planes[0], width);
    kernels.pack(planes[0], packed.data(), width);
    ASSERT_TRUE(std::equal(packed.begin(), packed.end() - 1, pixels.begin()));
    ASSERT_EQ(packed[width], 77);
    kernels.unpackGray(pixels.data(), planes[0], width);
    for (int channel = 0; channel < 4; ++channel) {
        kernels.unpackChannel(pixels.data(), channel, planes[1], width);
        for (std::size_t i = 0; i < width; ++i) {
            ASSERT_NEAR(planes[0][i], pixels[i] / full, 1e-7);
            ASSERT_NEAR(planes[1][i], pixels[4 * i + std::size_t(channel)] / full, 1e-7);
        }
    }
}

TEST_P(PixelKernels, EverySampleComesBackAndNothingBehindTheRowIsTouched)
{
    expectSamplesComeBack<std::uint8_t>(width(), 255);
    expectSamplesComeBack<std::uint16_t>(width(), 65535);
}

TEST_P(PixelKernels, ColoursAreMultipliedAndDividedByAlpha)
{
    const std::size_t width = this->width();
    Row rows[4] = {rowOf(randomValues(width, 1)), rowOf(randomValues(width, 2)), rowOf(randomValues(width, 3)),
                   rowOf(randomValues(width, 4))};
    rows[3].data[width / 2] = 0;
    float *const colours[3] = {rows[0].data, rows[1].data, rows[2].data};
    const std::vector<float> before = rows[2].storage;
    const std::ptrdiff_t start = rows[2].data - rows[2].storage.data();
    kernels::pixelRows().premultiply(colours, rows[3].data, width);
    expectEach(colours[2], 1e-7, [&](std::size_t i) { return before[std::size_t(start) + i] * rows[3].data[i]; });
    kernels::pixelRows().unpremultiply(colours, rows[3].data, width);
    expectEach(colours[2], 1e-6, [&](std::size_t i) { return i == width / 2 ? 0 : before[std::size_t(start) + i]; });
}

/// Pixels of four floats each.
TEST_P(PixelKernels, InterleavedPixelsAgreeWithDoublePrecision)
{
    const std::size_t width = this->width();
    constexpr int kTaps = 5;
    const Row source = rowOf(randomValues(4 * (width + 12), 1));
    const std::vector<float> weights = randomValues(kTaps * width, 2);
    std::vector<int> first(width);
    for (std::size_t i = 0; i < width; ++i)
        first[i] = int(i + i % 7);
    Row scaled(4 * width);
    kernels::scalePixels(source.data, first.data(), weights.data(), kTaps, scaled.data, width);
    const auto copyOf = [&](const Row &row) { return rowOf(std::vector<float>(row.data, row.data + 4 * width)); };
    const Row mixed = copyOf(scaled);
    kernels::blendPixels(source.data, weights.data(), mixed.data, width);
    const Row divided = copyOf(source);
    divided.data[4 * (width / 2) + 3] = 0;
    const Row multiplied = copyOf(divided);
    kernels::premultiplyPixels(multiplied.data, width);
    kernels::unpremultiplyPixels(divided.data, width);
    for (std::size_t i = 0; i < 4 * width; ++i) {
        double sum = 0;
        for (int t = 0; t < kTaps; ++t)
            sum += double(weights[i / 4 * kTaps + std::size_t(t)]) * source.data[4 * (first[i / 4] + t) + int(i % 4)];
        ASSERT_NEAR(scaled.data[i], sum, 1e-5) << i;
        const double weight = weights[i / 4];
        ASSERT_NEAR(mixed.data[i], weight * source.data[i] + (1 - weight) * sum, 1e-5) << i;
        const double alpha = i / 4 == width / 2 ? 0 : source.data[i / 4 * 4 + 3];
        const double value = i % 4 == 3 ? alpha : source.data[i];
        ASSERT_NEAR(multiplied.data[i], i % 4 == 3 ? alpha : value * alpha, 1e-6) << i;
        ASSERT_NEAR(divided.data[i], i % 4 == 3 ? alpha : alpha > 0 ? value / alpha : 0, 1e-5 / (alpha + 1e-9)) << i;
    }
}

TEST_P(PixelKernels, BlendsAgreeWithDoublePrecision)
{
    const std::size_t width = this->width();
    std::vector<Row> rows;
    for (unsigned seed = 1; seed <= 12; ++seed)
        rows.push_back(rowOf(randomValues(width, seed)));
    Row weight = rowOf(randomValues(width, 13));
    weight.data[0] = 0.0f;
    rows[7].data[0] = 0.0f; // transparent, with colours under it
    weight.data[width - 1] = width > 1 ? 1.0f : 0.0f;
    const float *foreground[4] = {rows[0].data, rows[1].data, rows[2].data, rows[3].data};
    const float *background[4] = {rows[4].data, rows[5].data, rows[6].data, rows[7].data};
    float *result[4] = {rows[8].data, rows[9].data, rows[10].data, rows[11].data};

    kernels::blendWithAlpha(foreground, background, weight.data, result, width);
    for (int c = 0; c < 4; ++c)
        EXPECT_EQ(result[c][0], background[c][0]);
    for (std::size_t i = 1; i < width; ++i) {
        const double k = weight.data[i];
        const double alpha = k * foreground[3][i] + (1 - k) * background[3][i];
        EXPECT_NEAR(result[3][i], alpha, 1e-6);
        for (int c = 0; c < 3; ++c) {
            const double mixed =
                k * foreground[c][i] * foreground[3][i] + (1 - k) * background[c][i] * background[3][i];
            EXPECT_NEAR(result[c][i], mixed / alpha, 1e-5);
        }
    }
    kernels::blendOpaque(foreground[0], background[0], weight.data, result[0], width);
    EXPECT_EQ(result[0][0], background[0][0]);
    expectEach(result[0], 1e-6, [&](std::size_t i) {
        return weight.data[i] * foreground[0][i] + (1.0 - weight.data[i]) * background[0][i];
    });
}

TEST_P(PixelKernels, PackingClampsAndNeverPassesNaNOn)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const std::size_t width = this->width();
    Row values(width);
    const float wild[] = {nan, -inf, -0.1f, 0.5f, 1.7f, inf, 2.5f / 255};
    for (std::size_t i = 0; i < width; ++i)
        values.data[i] = wild[i % 7];
    const float *planes[3] = {values.data, values.data, values.data};
    std::vector<std::uint8_t> packed(4 * width);
    kernels::pixelRows().eight.packRgb(planes, 3, packed.data(), width);
    const int wanted[] = {0, 0, 0, 128, 255, 255, 2};
    for (std::size_t i = 0; i < width; ++i)
        EXPECT_EQ(packed[4 * i], wanted[i % 7]) << i;
    // Clamping keeps full areas full.
    const float nearly[] = {-0.2f, 0.0f, 0.25f, 1.0f - 0x1p-22f, 1.0f, 1.3f, 65534.0f / 65535};
    const float clamped[] = {0.0f, 0.0f, 0.25f, 1.0f, 1.0f, 1.0f, 65534.0f / 65535};
    for (std::size_t i = 0; i < width; ++i)
        values.data[i] = nearly[i % 7];
    kernels::clampToUnit(values.data, width);
    expectEach(values.data, 0, [&](std::size_t i) { return clamped[i % 7]; });
}

/// What the best instruction set makes of a picture, which other tests hold against doubles, every other makes as well.
TEST_P(PixelKernels, WholePicturesComeOutTheSame)
{
    const auto results = [this] {
        const QImage bitmap = testing::noise({int(width()), 40}, QImage::Format_RGBX64);
        const FilterImage image(bitmap);
        const PhotoImagePtr photo = PhotoImage::fromBitmap(bitmap);
        const Utils &utils = Utils::sharedUtils();
        std::vector<QImage> all{FlippedImage::vignetteWithRadius(photo, 0, 0.1f, Qt::black)->bitmap(),
                                utils.scaleImage(photo, {97, 90})->bitmap()};
        for (const float radius : {1.5f, 9.0f, 33.0f, 100.0f, 300.0f})
            all.push_back(Renderer().draw(image.clamped().discBlurred(radius)));
        return all;
    };
    const std::vector<QImage> own = results();
    TearDown();
    const std::vector<QImage> best = results();
    for (std::size_t r = 0; r < own.size(); ++r) {
        for (int y = 0; y < own[r].height(); ++y) {
            const auto *one = reinterpret_cast<const quint16 *>(own[r].constScanLine(y));
            const auto *other = reinterpret_cast<const quint16 *>(best[r].constScanLine(y));
            for (int i = 0; i < 4 * own[r].width(); ++i)
                ASSERT_NEAR(one[i], other[i], 3) << r << ": " << i << ", " << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, PixelKernels, testing::everyTargetAndWidth(), testing::targetAndWidth);

} // namespace hazelmark
