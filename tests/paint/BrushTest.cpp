#include "BrushTips.h"
#include "Bundle.h"
#include "PaintCanvas.h"
#include "PaintControl.h"
#include "ProcessWide.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace hazelmark {

namespace {

QImage lookUp(float hardness)
{
    return PaintControl::brushImageWithHardness(hardness, false, 1);
}

} // namespace

// Resources of the test's own; a tip is recognised by the side of its image.
TEST(BrushTips, AreFoundByTheRoundedPercentageAndElseTheHardestOne)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"Brushes.bundle"_qs));
    Bundle bundle(folder.path());
    const ProcessWide<Bundle>::Replacement replacement(bundle);
    const auto path = [&](int level) { return folder.filePath(u"Brushes.bundle/Brush_hardness_%1.png"_qs.arg(level)); };
    const auto writeTip = [&](int level, int side) {
        ASSERT_TRUE(QImage(side, side, QImage::Format_ARGB32).save(path(level)));
    };
    EXPECT_TRUE(lookUp(0.5F).isNull());
    for (const int level : {0, 7, 50, 58, 100})
        writeTip(level, level + 1);
    QFile damaged(path(20));
    ASSERT_TRUE(damaged.open(QFile::WriteOnly) && damaged.write("no picture") > 0);
    damaged.close();
    for (const auto &[hardness, side] : {std::pair(0.0F, 1),
                                         {0.07F, 8},
                                         {0.5F, 51},
                                         {0.575F, 59},
                                         {1.0F, 101},
                                         {0.3F, 101},
                                         {0.2F, 101},
                                         {-0.4F, 101},
                                         {1e30F, 101},
                                         {std::numeric_limits<float>::quiet_NaN(), 101}})
        EXPECT_EQ(lookUp(hardness).width(), side) << hardness;
    ASSERT_TRUE(QFile::remove(path(100)));
    EXPECT_TRUE(lookUp(0.3F).isNull());
}

TEST(BrushTips, DrawnOnesAreThereForEveryPercentAndRound)
{
    QImage softer;
    for (int level = 0; level <= 100; ++level) {
        const QImage tip = lookUp(float(level) / 100);
        ASSERT_TRUE(tip.hasAlphaChannel() && tip.cacheKey() != softer.cacheKey()) << level;
        ASSERT_EQ(tip.width(), tip.height());
        const int middle = tip.width() / 2;
        for (int y = 0; y < tip.height(); ++y) {
            for (int x = 0; x < tip.width(); ++x) {
                const QRgb texel = tip.pixel(x, y);
                ASSERT_EQ(texel | 0xFF000000U, 0xFFFFFFFFU);
                // A turn and a mirror give the same picture, and a harder tip covers no less.
                ASSERT_EQ(texel, tip.pixel(tip.width() - 1 - y, x)) << level;
                ASSERT_EQ(texel, tip.pixel(y, x)) << level;
                ASSERT_TRUE(softer.isNull() || qAlpha(texel) >= qAlpha(softer.pixel(x, y))) << level;
            }
            // Falls from the middle outwards.
            ASSERT_TRUE(y < middle || y + 1 == tip.height() ||
                        qAlpha(tip.pixel(middle, y)) >= qAlpha(tip.pixel(middle, y + 1)));
        }
        EXPECT_EQ(qAlpha(tip.pixel(0, middle)), 0);
        EXPECT_GE(qAlpha(tip.pixel(middle, middle)), 254);
        softer = tip;
    }
}

TEST(PaintControl, BringsItsDefaultsOnAwakingAndOnlyTheDiameterSetsTheStampSize)
{
    PaintCanvas canvas;
    PaintControl control;
    control.setLineWidth(10);
    control.setPaintView(&canvas);
    EXPECT_EQ(canvas.pointSize(), 0);
    control.awakeFromNib();
    EXPECT_EQ(control.lineWidth(), 50);
    EXPECT_EQ(canvas.pointSize(), 66.0F);
    EXPECT_FLOAT_EQ(canvas.brushPixelStep(), 6.6F);
    EXPECT_EQ(canvas.hardness(), 0.5F);
    for (const auto &[hardness, before, after] : {std::tuple(0.0F, 66.0F, 64.8F), {1.0F, 64.8F, 40.8F}}) {
        control.setHardness(hardness);
        EXPECT_EQ(canvas.pointSize(), before);
        EXPECT_EQ(canvas.hardness(), hardness);
        control.setLineWidth(40);
        EXPECT_EQ(canvas.pointSize(), after);
        EXPECT_FLOAT_EQ(canvas.brushPixelStep(), after / 10);
        EXPECT_EQ(canvas.brush(), lookUp(hardness));
    }
}

} // namespace hazelmark
