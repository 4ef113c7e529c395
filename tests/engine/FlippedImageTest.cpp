#include "FlippedImage.h"

#include "PictureReference.h"
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

TEST(Blend, MixesByTheMasksGreenOverBlackAndNeedsAllThree)
{
    constexpr auto kOpaque = QImage::Format_RGBX8888, kClear = QImage::Format_RGBA8888;
    for (const auto &[front, back, mask] : {std::tuple(kOpaque, kOpaque, kOpaque),
                                            {kClear, kOpaque, QImage::Format_Grayscale8},
                                            {kOpaque, kClear, kClear},
                                            {QImage::Format_RGBA64, kClear, QImage::Format_RGBA64}}) {
        const QImage bitmaps[] = {noise(kSize, front, 1), noise(kSize, back, 2), noise(kSize, mask, 3)};
        const Pixels fronts(bitmaps[0]), backs(bitmaps[1]), masks(bitmaps[2]);
        const QImage blended =
            FlippedImage::blendWithAlphaMask(photoOf(bitmaps[0]), photoOf(bitmaps[1]), photoOf(bitmaps[2]), 20)
                ->bitmap();
        const auto mixed = [&](int x, int y) {
            const double green = masks(x, y)[1] * masks(x, y)[3];
            WeightedSum sum;
            sum.add(green, fronts(x, y));
            sum.add(1 - green, backs(x, y));
            return sum.colour();
        };
        EXPECT_LT(errorOf(blended, mixed, blended.rect(), 3).largest, 0.51) << front << back;
    }
    const QImage front = noise(kSize, kOpaque);
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(photoOf(front), mask(Qt::red), nullptr, 20)->bitmap(), front);
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(photoOf(front), nullptr, mask(Qt::black), 20)->bitmap(), front);
    EXPECT_EQ(FlippedImage::blendWithAlphaMask(nullptr, photoOf(front), mask(Qt::black), 20), nullptr);
}

TEST(Blend, UnpaintedPixelsKeepEveryStoredBit)
{
    // A spot in one tile, so that its tile is computed and others are copied.
    const QRect spot(10, 40, 50, 60);
    const QImage paint = drawn(kSize, QImage::Format_RGBX8888,
                               [&](int x, int y) -> QColor { return spot.contains(x, y) ? Qt::green : Qt::black; });
    CoreFilterObject settings;
    settings.blurAmount = 25.0f;
    for (const QImage::Format format :
         {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64, QImage::Format_RGBA64}) {
        const PhotoImagePtr original = photoOf(noise(kSize, format));
        const PhotoImagePtr blurred = Utils::sharedUtils().applyfilterOnBlurImage(original, {}, settings);
        const QImage soft = blurred->bitmap();
        QImage wanted = original->bitmap();
        for (int y = spot.top(); y <= spot.bottom(); ++y)
            std::memcpy(wanted.scanLine(y) + spot.x() * wanted.depth() / 8,
                        soft.constScanLine(y) + spot.x() * wanted.depth() / 8,
                        std::size_t(spot.width() * wanted.depth() / 8));
        EXPECT_EQ(FlippedImage::blendWithAlphaMask(blurred, original, photoOf(paint), 20)->bitmap(), wanted) << format;
    }
}

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
