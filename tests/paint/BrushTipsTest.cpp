#include "BrushTips.h"

#include "Bundle.h"
#include "PaintControl.h"
#include "ProcessWide.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <limits>

namespace hazelmark {

namespace {

QImage lookUp(float hardness)
{
    return PaintControl::brushImageWithHardness(hardness, false, 1);
}

/// Resources of the test's own; a tip is recognised by the side of its image.
class OwnBrushes : public testing::Test
{
protected:
    OwnBrushes() { QDir(m_folder.path()).mkdir(u"Brushes.bundle"_qs); }

    QString path(int level) const { return m_folder.filePath(u"Brushes.bundle/Brush_hardness_%1.png"_qs.arg(level)); }
    void writeTip(int level, int side) const
    {
        QImage tip(side, side, QImage::Format_ARGB32);
        tip.fill(Qt::white);
        ASSERT_TRUE(tip.save(path(level)));
    }

    QTemporaryDir m_folder;
    Bundle m_bundle{m_folder.path()};
    ProcessWide<Bundle>::Replacement m_replacement{m_bundle};
};

} // namespace

TEST_F(OwnBrushes, AreFoundByTheRoundedPercentage)
{
    for (const int level : {0, 7, 50, 58, 100})
        writeTip(level, level + 1);
    for (const auto &[hardness, side] :
         {std::pair(0.0F, 1), {0.07F, 8}, {0.5F, 51}, {0.58F, 59}, {0.575F, 59}, {1.0F, 101}})
        EXPECT_EQ(lookUp(hardness).width(), side) << hardness;
    EXPECT_EQ(PaintControl::brushImageWithHardness(0.5F, true, 0.1F).width(), 51);
}

TEST_F(OwnBrushes, FallBackToTheHardestOne)
{
    EXPECT_TRUE(lookUp(0.5F).isNull());
    writeTip(100, 9);
    QFile damaged(path(20));
    ASSERT_TRUE(damaged.open(QFile::WriteOnly));
    damaged.write("no picture");
    damaged.close();
    for (const float hardness : {0.5F, 0.2F, -0.4F, 7.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(lookUp(hardness).width(), 9) << hardness;
}

TEST_F(OwnBrushes, ChangedAndRemovedFilesAreNoticed)
{
    writeTip(100, 3);
    writeTip(30, 5);
    const QImage first = lookUp(0.3F);
    EXPECT_EQ(first.width(), 5);
    EXPECT_EQ(lookUp(0.3F).cacheKey(), first.cacheKey()); // decoded once
    writeTip(30, 6);
    EXPECT_EQ(lookUp(0.3F).width(), 6);
    ASSERT_TRUE(QFile::remove(path(30)));
    EXPECT_EQ(lookUp(0.3F).width(), 3);
    ASSERT_TRUE(QFile::remove(path(100)));
    EXPECT_TRUE(lookUp(0.3F).isNull());
}

TEST(DrawnBrushTips, AreThereForEveryPercentAndRound)
{
    QImage softer;
    for (int level = 0; level <= 100; ++level) {
        const QString path = Bundle::mainBundle()
                                 .subBundle(u"Brushes"_qs)
                                 .pathForResource(u"Brush_hardness_%1"_qs.arg(level), u"png"_qs);
        const QImage tip(path);
        ASSERT_TRUE(tip.hasAlphaChannel()) << level;
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

TEST(DrawnBrushTips, SoftOneFallsOverTheWholeRadiusAndHardOneWithinAPixel)
{
    const QImage soft = lookUp(0);
    const QImage hard = lookUp(1);
    const int middle = soft.width() / 2;
    int partial = 0;
    for (int x = middle; x + 1 < soft.width(); ++x) {
        const int alpha = qAlpha(hard.pixel(x, middle));
        partial += alpha > 0 && alpha < 255 ? 1 : 0;
        // No step that the eye could see as a ring: half a cosine over the radius falls by less than 6.4 a texel.
        EXPECT_LE(qAlpha(soft.pixel(x, middle)) - qAlpha(soft.pixel(x + 1, middle)), 7);
    }
    EXPECT_LE(partial, 2);
    EXPECT_NEAR(qAlpha(soft.pixel(middle + int(middle / 1.02 / 2), middle)), 128, 4);
    // The hardest stamps are 1.02 diameters wide: the disc in them has the diameter itself.
    double area = 0;
    for (int y = 0; y < hard.height(); ++y)
        for (int x = 0; x < hard.width(); ++x)
            area += qAlpha(hard.pixel(x, y)) / 255.0;
    EXPECT_NEAR(2 * std::sqrt(area / 3.14159265358979), hard.width() / 1.02, 0.1);
}

} // namespace hazelmark
