#include "FlippedImage.h"
#include "KernelTest.h"
#include "PartPainter.h"
#include "Pictures.h"
#include "Renderer.h"
#include "Utils.h"
#include "kernels/DiscSumRows.h"
#include "kernels/PixelRows.h"
#include "kernels/ScaleRows.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace hazelmark {

namespace {

constexpr std::size_t kPadding = 16;
constexpr std::size_t kRoom = 64; // behind a row, for what kernels may touch there

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
    std::vector<std::uint16_t> samples(width + kRoom);
    kernels::quantizeRow(values.data, samples.data(), width);
    expectEach(samples.data(), 0, [&](std::size_t i) {
        return std::isnan(wild[i % 7]) ? 0 : std::lrintf(std::clamp(wild[i % 7], 0.0f, 1.0f) * 65535.0f);
    });
    // Clamping keeps full areas full.
    const float nearly[] = {-0.2f, 0.0f, 0.25f, 1.0f - 0x1p-22f, 1.0f, 1.3f, 65534.0f / 65535};
    const float clamped[] = {0.0f, 0.0f, 0.25f, 1.0f, 1.0f, 1.0f, 65534.0f / 65535};
    for (std::size_t i = 0; i < width; ++i)
        values.data[i] = nearly[i % 7];
    kernels::clampToUnit(values.data, width);
    expectEach(values.data, 0, [&](std::size_t i) { return clamped[i % 7]; });
}

TEST_P(PixelKernels, EightBitSamplesAreToldFromOthers)
{
    std::vector<float> values(width() + kRoom, 0.3f); // what lies behind the row does not count
    for (std::size_t i = 0; i < width(); ++i)
        values[i] = float(i % 256) * (1.0f / 255.0f);
    std::vector<std::uint16_t> samples(width() + kRoom);
    ASSERT_TRUE(kernels::quantizeRow8(values.data(), samples.data(), width()));
    expectEach(samples.data(), 0, [](std::size_t i) { return i % 256; });
    for (const std::size_t at : {std::size_t(0), width() / 2, width() - 1}) {
        std::vector<float> deep = values;
        deep[at] = (257.0f * float(at % 255) + 1.0f) / 65535.0f;
        EXPECT_FALSE(kernels::quantizeRow8(deep.data(), samples.data(), width())) << at;
    }
}

/// What the best instruction set makes of a picture, which other tests hold against doubles, every other makes as well.
TEST_P(PixelKernels, WholePicturesComeOutTheSame)
{
    const auto results = [this] {
        const QImage bitmap = testing::noise({int(width()), 40}, QImage::Format_RGBA64);
        const QImage values = testing::noise({int(width()), 20}, QImage::Format_Grayscale8);
        const PhotoImagePtr photo = PhotoImage::fromBitmap(bitmap), mask = PhotoImage::fromBitmap(values);
        const PhotoImagePtr opaque = PhotoImage::fromBitmap(bitmap.convertToFormat(QImage::Format_RGBX64));
        const PhotoImagePtr dark = FlippedImage::vignetteWithRadius(photo, 0, 0.1f, Qt::black);
        std::vector<QImage> all;
        for (const PhotoImagePtr &front : {photo, opaque})
            all.push_back(FlippedImage::blendWithAlphaMask(front, dark, mask, 20)->bitmap());
        for (const float radius : {1.5f, 9.0f, 33.0f, 100.0f, 300.0f})
            all.push_back(Renderer().draw(FilterImage(bitmap).clamped().discBlurred(radius)));
        const QRect part(0, 0, 97, 90);
        PartPainter painter(bitmap, part.size(), part);
        painter.setMask(values, {}, values.size());
        painter.setBlurred(Utils::sharedUtils().scaleImage(dark, part.size())->bitmap(), {});
        all.push_back(painter.draw(part, painter.pieces(part, 1), 1));
        return all;
    };
    const std::vector<QImage> own = results();
    TearDown();
    const std::vector<QImage> best = results();
    for (std::size_t i = 0; i < own.size(); ++i)
        EXPECT_LE(testing::difference(own[i], best[i]), 3 / 257.0) << i;
}

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, PixelKernels, testing::everyTargetAndWidth(), testing::targetAndWidth);

} // namespace hazelmark
