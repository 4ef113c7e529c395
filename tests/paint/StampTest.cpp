#include "BrushTips.h"
#include "KernelTest.h"
#include "ReferenceStamps.h"

#include <gtest/gtest.h>

#include <limits>

namespace hazelmark {

namespace {

constexpr Color kGreen{0, 1, 0, 1};
constexpr auto kPaint = StampPainter::Mode::Paint;
constexpr auto kErase = StampPainter::Mode::Erase;

std::vector<StampCentre> line(StampCentre from, StampCentre step, int count)
{
    std::vector<StampCentre> centres;
    for (int i = 0; i < count; ++i)
        centres.push_back({from.x + i * step.x, from.y + i * step.y});
    return centres;
}

/// Not white, and different in all four components.
QImage colouredTip()
{
    return testing::drawn({64, 64}, QImage::Format_ARGB32,
                          [](int x, int y) { return QColor(4 * x, 255 - 2 * y, 128, 4 * y); });
}

struct StampCase
{
    float hardness; ///< of the tip; below 0: the coloured one
    float pointSize;
    Color color = kGreen;
    int times = 1;
};

/// On every instruction set of this machine. The sizes take all ways in which pixels may be spaced on the tip, the
/// stamps' lines have all lengths, and the buffer cuts some of them off on each side.
class Stamps : public ::testing::TestWithParam<std::tuple<std::int64_t, StampCase>>
{
protected:
    void SetUp() override { testing::useTarget(std::get<0>(GetParam())); }
    void TearDown() override { testing::useTarget(0); }
};

} // namespace

TEST_P(Stamps, AgreeWithDoublePrecision)
{
    const auto &[hardness, pointSize, color, times] = std::get<1>(GetParam());
    const QImage tip = hardness < 0 ? colouredTip() : BrushTips::shared().tipForHardness(hardness);
    ASSERT_FALSE(tip.isNull());
    const BrushTexture texture(tip);
    QImage got = blankBuffer({151, 103});
    QImage wanted = got.copy();
    const double step = std::min(30.0, double(pointSize) / 10);
    // Along a slope at fractional places, from beyond the left and top edges; in another colour; then erased across.
    const StampCentres painted(line({-12.3, -6.7}, {0.83 * step, 0.55 * step}, 30), times);
    const StampCentres again(line({140.1, 90.2}, {-0.7 * step, 0.1 * step}, 5));
    const StampCentres erased(line({125.9, 15.1}, {-0.9 * step, 0.41 * step}, 9), times);
    for (const auto &[mode, paint, centres] :
         {std::tuple(kPaint, color, painted), {kPaint, Color{0.1, 0.3, 0.9, 0.8}, again}, {kErase, color, erased}}) {
        StampPainter(mode, paint, pointSize, texture).stamp(StampTarget(got), centres);
        stampReference(wanted, mode, paint, pointSize, tip, centres);
        // Single precision may tip a number that lies between two, and again a few stamps later.
        EXPECT_LE(testing::difference(got, wanted), times > 1 ? 2 : 1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryInstructionSet, Stamps,
    ::testing::Combine(::testing::ValuesIn(hwy::SupportedAndGeneratedTargets()),
                       ::testing::Values(StampCase{0, 64.8F}, StampCase{0, 486}, StampCase{0.37F, 11.5F},
                                         StampCase{0.5F, 66, {0.1, 0.5, 1, 0.5}}, StampCase{1, 128}, StampCase{1, 256},
                                         StampCase{1, 306}, StampCase{1, 3.3F}, StampCase{0.2F, 50, {1, 1, 1, 0.2}},
                                         StampCase{0, 40, kGreen, 12}, StampCase{-1, 33, {0.9, 0.2, 0.6, 0.5}},
                                         StampCase{-1, 90}, StampCase{-1, 22, {1, 1, 1, 1}, 3})));

TEST(Stamp, CoversThePixelsWhoseCentresLieInItsSquareIfThereIsAny)
{
    QImage tip(8, 8, QImage::Format_ARGB32);
    tip.fill(Qt::white);
    const BrushTexture texture(tip);
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    struct Case
    {
        float size;
        StampCentre centre;
        QRect covered;
    };
    // A centre on the low border is in, one on the high border is out.
    for (const auto &[size, centre, covered] :
         {Case{5, {7.1, 8.0}, {5, 5, 5, 5}}, Case{5, {-1.9, 14}, {0, 11, 1, 5}}, Case{3e38F, {5, 5}, {0, 0, 20, 20}},
          Case{0, {5, 5}, {}}, Case{-3, {5, 5}, {}}, Case{kNan, {5, 5}, {}}, Case{kInfinity, {5, 5}, {}},
          Case{5, {kNan, 5}, {}}, Case{5, {5, kInfinity}, {}}, Case{5, {-1e30, 5}, {}}, Case{5, {5, 23}, {}}}) {
        QImage buffer = blankBuffer({20, 20});
        const StampCentres centres(std::vector{centre});
        StampPainter(kPaint, {0, kNan, 0, kNan}, size, texture).stamp(StampTarget(buffer), centres); // no colour
        StampPainter(kPaint, kGreen, size, BrushTexture()).stamp(StampTarget(buffer), centres);      // no tip
        EXPECT_EQ(StampPainter(kPaint, kGreen, size, texture).stamp(StampTarget(buffer), centres).isEmpty(),
                  covered.isEmpty());
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 20; ++x)
                ASSERT_EQ(buffer.pixel(x, y), covered.contains(x, y) ? qRgba(0, 255, 0, 255) : 0U) << x << ' ' << y;
    }
}

} // namespace hazelmark
