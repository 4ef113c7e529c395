#include "BrushTips.h"
#include "ReferenceStamps.h"
#include "StampPainter.h"

#include <gtest/gtest.h>

#include <limits>

namespace hazelmark {

namespace {

constexpr Color kGreen{0, 1, 0, 1};
constexpr auto kPaint = StampPainter::Mode::Paint;
constexpr auto kErase = StampPainter::Mode::Erase;

QImage solidTip(int side)
{
    QImage tip(side, side, QImage::Format_ARGB32);
    tip.fill(Qt::white);
    return tip;
}

std::vector<StampCentre> line(StampCentre from, StampCentre step, int count)
{
    std::vector<StampCentre> centres;
    for (int i = 0; i < count; ++i)
        centres.push_back({from.x + i * step.x, from.y + i * step.y});
    return centres;
}

struct StampCase
{
    float hardness;
    float pointSize;
};

using StampsOfATip = testing::TestWithParam<StampCase>;

} // namespace

TEST_P(StampsOfATip, AgreeWithDoublePrecision)
{
    const auto [hardness, pointSize] = GetParam();
    const QImage tip = BrushTips::shared().tipForHardness(hardness);
    ASSERT_FALSE(tip.isNull());
    const BrushTexture texture(tip);
    QImage got = blankBuffer({301, 203});
    QImage wanted = got.copy();
    const double step = double(pointSize) / 10;
    // Along a slope at fractional places, from beyond the left and top edges, then erased across.
    const auto painted = line({-20.3, -10.7}, {0.83 * step, 0.55 * step}, 45);
    const auto erased = line({250.9, 30.1}, {-0.9 * step, 0.41 * step}, 12);
    StampPainter(kPaint, kGreen, pointSize, texture).stamp(StampTarget(got), painted);
    stampReference(wanted, kPaint, kGreen, pointSize, tip, painted);
    EXPECT_LE(largestDifference(got, wanted), 1);
    StampPainter(kErase, kGreen, pointSize, texture).stamp(StampTarget(got), erased);
    stampReference(wanted, kErase, kGreen, pointSize, tip, erased);
    EXPECT_LE(largestDifference(got, wanted), 1);
}

INSTANTIATE_TEST_SUITE_P(Sizes, StampsOfATip,
                         testing::Values(StampCase{0, 64.8F}, StampCase{0, 486}, StampCase{0.5F, 66},
                                         StampCase{0.37F, 11.5F}, StampCase{1, 40.8F}, StampCase{1, 128},
                                         StampCase{1, 256}, StampCase{1, 306}, StampCase{1, 3.3F}));

TEST(Stamp, ColoursAndColouredTipsAreModulatedComponentByComponent)
{
    QImage tip(64, 64, QImage::Format_ARGB32);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            tip.setPixel(x, y, qRgba(4 * x, 255 - 2 * y, 128, 4 * y));
    const Color color{0.9, 0.2, 0.6, 0.5};
    for (const QImage &image : {tip, BrushTips::shared().tipForHardness(0.2F)}) {
        const BrushTexture texture(image);
        QImage got = blankBuffer({80, 70});
        QImage wanted = got.copy();
        const auto centres = line({20.2, 18.6}, {4.1, 3.3}, 9);
        StampPainter(kPaint, color, 33, texture).stamp(StampTarget(got), centres);
        stampReference(wanted, kPaint, color, 33, image, centres);
        EXPECT_LE(largestDifference(got, wanted), 1);
    }
}

TEST(Stamp, PaintedPixelsStayFullAndErasedOnesGetEmpty)
{
    const BrushTexture hard(BrushTips::shared().tipForHardness(1));
    const BrushTexture soft(BrushTips::shared().tipForHardness(0));
    QImage buffer = blankBuffer({100, 60});
    const auto centres = line({20.25, 30.7}, {4, 0}, 16);
    StampPainter(kPaint, kGreen, 40, hard).stamp(StampTarget(buffer), centres);
    const QImage once = buffer.copy();
    EXPECT_EQ(buffer.pixel(50, 30), qRgba(0, 255, 0, 255));
    // Whatever is painted over it, a full pixel stays full, and no pixel loses anything.
    for (int i = 0; i < 20; ++i)
        StampPainter(kPaint, kGreen, 40, soft).stamp(StampTarget(buffer), centres);
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 100; ++x) {
            const uchar *pixel = buffer.constScanLine(y) + 4 * x;
            const uchar *pixelOnce = once.constScanLine(y) + 4 * x;
            ASSERT_GE(pixel[1], pixelOnce[1]);
            ASSERT_EQ(pixel[1], pixel[3]);
            ASSERT_TRUE(pixelOnce[3] < 255 || pixel[3] == 255);
        }
    }
    StampPainter(kErase, {}, 60, hard).stamp(StampTarget(buffer), centres);
    for (int x = 20; x < 80; ++x)
        ASSERT_EQ(buffer.pixel(x, 30), 0U);
}

TEST(Stamp, CoversThePixelsWhoseCentresLieInItsSquare)
{
    const BrushTexture texture(solidTip(8));
    QImage buffer = blankBuffer({20, 20});
    // x from 4.6 to 9.6, y from 5.5 to 10.5: a centre on the low border is in, one on the high border is out.
    const QRect touched =
        StampPainter(kPaint, kGreen, 5, texture).stamp(StampTarget(buffer), std::vector{StampCentre{7.1, 8.0}});
    EXPECT_EQ(touched, QRect(5, 5, 5, 5));
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            ASSERT_EQ(buffer.pixel(x, y), touched.contains(x, y) ? qRgba(0, 255, 0, 255) : 0U) << x << ' ' << y;
}

TEST(Stamp, NothingHappensWithoutATipASizeOrAPlace)
{
    const BrushTexture texture(solidTip(4));
    const BrushTexture empty{QImage()};
    QImage buffer = blankBuffer({10, 10});
    const QImage before = buffer.copy();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::vector<StampCentre> middle{{5, 5}};
    EXPECT_TRUE(StampPainter(kPaint, kGreen, 5, empty).stamp(StampTarget(buffer), middle).isEmpty());
    for (const float size : {0.0F, -3.0F, kNan, kInfinity})
        EXPECT_TRUE(StampPainter(kPaint, kGreen, size, texture).stamp(StampTarget(buffer), middle).isEmpty());
    const std::vector<StampCentre> nowhere{{kNan, 5}, {5, kInfinity}, {-1e30, 5}, {5, 1e30}, {-3, 5}, {5, 14}};
    EXPECT_TRUE(StampPainter(kPaint, kGreen, 5, texture).stamp(StampTarget(buffer), nowhere).isEmpty());
    StampPainter(kPaint, {0, kNan, 0, kNan}, 5, texture).stamp(StampTarget(buffer), middle);
    EXPECT_EQ(buffer, before);
    // A stamp of any size at all: the buffer is a speck in its middle.
    StampPainter(kPaint, kGreen, 3e38F, texture).stamp(StampTarget(buffer), middle);
    EXPECT_EQ(buffer.pixel(0, 0), qRgba(0, 255, 0, 255));
    EXPECT_EQ(buffer.pixel(9, 9), qRgba(0, 255, 0, 255));
}

} // namespace hazelmark
