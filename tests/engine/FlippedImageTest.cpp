#include "FlippedImage.h"

#include "Pictures.h"
#include "Utils.h"

#include <gtest/gtest.h>

namespace hazelmark {

using namespace testing;

namespace {

const QSize kSize(700, 300); // more than one tile each way

PhotoImagePtr photoOf(const QImage &image)
{
    return PhotoImage::fromBitmap(image);
}

PhotoImagePtr mask(const QColor &color, QSize size = kSize)
{
    return photoOf(filled(size, QImage::Format_RGBX8888, color));
}

} // namespace

TEST(Blend, OnlyTheGreenChannelOfTheMaskCounts)
{
    const QImage front = noise(kSize, QImage::Format_RGBX8888, 1);
    const QImage back = noise(kSize, QImage::Format_RGBX8888, 2);
    const auto blend = [&](const QColor &color) {
        return FlippedImage::blendWithAlphaMask(photoOf(front), photoOf(back), mask(color), 20)->bitmap();
    };
    EXPECT_EQ(blend(Qt::black), back);
    EXPECT_EQ(blend(Qt::red), back);
    EXPECT_EQ(blend(QColor(0, 255, 0)), front);
    // Without a mask or a background the receiver shows.
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(photoOf(front), photoOf(back), nullptr, 20)->bitmap(), front);
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(photoOf(front), nullptr, mask(Qt::black), 20)->bitmap(), front);
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(nullptr, photoOf(front), mask(Qt::black), 20), nullptr);
    const QImage mixed = blend(QColor(0, 128, 0));
    const PhotoImagePtr clear = photoOf(filled(kSize, QImage::Format_RGBA8888, QColor(0, 255, 0, 128)));
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(photoOf(front), photoOf(back), clear, 20)->bitmap(), mixed)
        << "over black";
    for (int i = 0; i < 400; ++i) {
        const int x = i * 17 % kSize.width(), y = i * 7 % kSize.height();
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(samplesAt(mixed, x, y)[c],
                        (samplesAt(front, x, y)[c] * 128 + samplesAt(back, x, y)[c] * 127) / 255.0, 0.5001);
    }
}

using BlendFormats = ::testing::TestWithParam<QImage::Format>;

TEST_P(BlendFormats, UnpaintedPixelsKeepEveryStoredBit)
{
    const QImage photo = noise(kSize, GetParam());
    // A spot in one tile, so that its tile is computed and others are copied.
    const QImage paint = drawn(kSize, QImage::Format_RGBX8888, [](int x, int y) -> QColor {
        return x >= 10 && x < 60 && y >= 40 && y < 100 ? Qt::green : Qt::black;
    });
    CoreFilterObject settings;
    settings.blurAmount = 25.0f;
    const PhotoImagePtr original = photoOf(photo);
    const PhotoImagePtr blurred = Utils::sharedUtils().applyfilterOnBlurImage(original, {}, settings);
    const PhotoImagePtr blended = FlippedImage::blendWithAlphaMask(blurred, original, photoOf(paint), 20);
    const QImage result = blended->bitmap();
    ASSERT_EQ(result.format(), photo.format());
    int changed = 0;
    for (int y = 0; y < kSize.height(); ++y) {
        for (int x = 0; x < kSize.width(); ++x) {
            const int bytes = photo.depth() / 8;
            const bool same = std::memcmp(result.constScanLine(y) + x * bytes, photo.constScanLine(y) + x * bytes,
                                          std::size_t(bytes)) == 0;
            const bool painted = paint.pixelColor(x, y) != QColor(Qt::black);
            ASSERT_TRUE(same || painted) << x << ", " << y;
            changed += !same;
        }
    }
    EXPECT_GT(changed, 60 * 50 * 9 / 10);
}

INSTANTIATE_TEST_SUITE_P(AllDepths, BlendFormats,
                         ::testing::Values(QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64,
                                           QImage::Format_RGBA64));

TEST(Blend, PicturesAreFittedToTheReceiversSize)
{
    const PhotoImagePtr front = photoOf(filled({200, 100}, QImage::Format_RGBX8888, Qt::white));
    const PhotoImagePtr back = photoOf(filled({50, 50}, QImage::Format_RGBX8888, Qt::black));
    const PhotoImagePtr paint = photoOf(drawn({20, 10}, QImage::Format_RGBX8888, [](int, int y) -> QColor {
        return y < 5 ? Qt::green : Qt::black; // the upper half
    }));
    const QImage result = FlippedImage::blendWithAlphaMask(front, back, paint, 20)->bitmap();
    paint->setSize({7, 3}); // as some other render left them
    back->setSize({6000, 4000});
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(front, back, paint, 20)->bitmap(), result);
    ASSERT_EQ(result.size(), QSize(200, 100));
    for (int x = 0; x < 200; ++x)
        EXPECT_EQ(samplesAt(result, x, 10)[0] - samplesAt(result, x, 90)[0], 255);
    EXPECT_NEAR(samplesAt(result, 100, 50)[0], 127, 25);
}

TEST(Vignette, HalvesTheLightAtATenthAndLeavesAlpha)
{
    const QImage ramp =
        drawn({256, 2}, QImage::Format_RGBA8888, [](int x, int) { return QColor(x, x, x, 255 - x / 2); });
    const QImage dark = FlippedImage::vignetteWithRadius(photoOf(ramp), 0, 0.1f, Qt::black)->bitmap();
    for (int x = 0; x < 256; ++x) {
        const double wanted = srgbFromLinear(linearFromSrgb(x / 255.0) / 2);
        EXPECT_NEAR(samplesAt(dark, x, 0)[1], wanted * 255, 0.5001) << x;
        EXPECT_EQ(samplesAt(dark, x, 0)[3], 255 - x / 2);
    }
    const PhotoImagePtr photo = photoOf(ramp);
    for (const float intensity : {0.0f, -1.0f, std::nanf("")})
        EXPECT_EQ(FlippedImage::vignetteWithRadius(photo, 0, intensity, Qt::black), photo);
}

TEST(Orientation, AViewerUndoesWhatTheWriterTurned)
{
    const int w = 37, h = 20;
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA64, QImage::Format_Grayscale8}) {
        const QImage upright = noise({w, h}, format);
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const QImage stored = FlippedImage::RotateWithEXIF(upright, orientation);
            const int right = stored.width() - 1, low = stored.height() - 1;
            // What a viewer does for each tag, from the definition: which corners of the stored pixels the picture's
            // top left and top right come from.
            const std::pair<QPoint, QPoint> corners[] = {
                {{0, 0}, {right, 0}}, {{right, 0}, {0, 0}}, {{right, low}, {0, low}},   {{0, low}, {right, low}},
                {{0, 0}, {0, low}},   {{0, low}, {0, 0}},   {{right, low}, {right, 0}}, {{right, 0}, {right, low}}};
            const auto &[topLeft, topRight] = corners[orientation - 1];
            EXPECT_EQ(stored.pixelColor(topLeft), upright.pixelColor(0, 0)) << orientation;
            EXPECT_EQ(stored.pixelColor(topRight), upright.pixelColor(w - 1, 0)) << orientation;
            EXPECT_EQ(FlippedImage::uprightFromEXIF(stored, orientation), upright) << orientation;
        }
        for (const int other : {-1, 0, 9, 274})
            EXPECT_EQ(FlippedImage::RotateWithEXIF(upright, other), upright);
    }
}

} // namespace hazelmark
