#include "Geometry.h"

#include <gtest/gtest.h>

#include <cmath>

namespace hazelmark {

struct FitCase
{
    QSizeF size;
    QSizeF box;
    QSizeF fitted;
};

using AspectFit = testing::TestWithParam<FitCase>;

TEST_P(AspectFit, FillsTheBoxAlongOneSide)
{
    const auto &[size, box, fitted] = GetParam();
    const QSizeF got = Geometry::getAspectFitModeSizeWithsize(size, box);
    EXPECT_FLOAT_EQ(float(got.width()), float(fitted.width()));
    EXPECT_FLOAT_EQ(float(got.height()), float(fitted.height()));
    // Single precision throughout: a value that is no float would shift the canvas against the photo.
    EXPECT_EQ(got.width(), double(float(got.width())));
    EXPECT_EQ(got.height(), double(float(got.height())));
}

INSTANTIATE_TEST_SUITE_P(Sizes, AspectFit,
                         testing::Values(FitCase{{4000, 3000}, {800, 800}, {800, 600}},
                                         FitCase{{3000, 4000}, {800, 800}, {600, 800}},
                                         FitCase{{100, 50}, {800, 600}, {800, 400}},
                                         FitCase{{1000, 1000}, {400, 300}, {300, 300}},
                                         // The first step overshoots the other side, the second one corrects it.
                                         FitCase{{400, 300}, {800, 100}, {800.0 / 6, 100}},
                                         FitCase{{300, 400}, {100, 800}, {100, 800.0 / 6}},
                                         FitCase{{3000, 2001}, {1000, 1000}, {1000, 667}}));

TEST(Geometry, RatioIsRoundedToSinglePrecisionBeforeItIsUsed)
{
    const QSizeF got = Geometry::getAspectFitModeSizeWithsize({3000, 2000}, {1000, 1000});
    EXPECT_EQ(got.height(), double(float(float(1000.0 / 3000.0) * 2000.0)));
    EXPECT_NE(got.height(), 2000.0 / 3.0);
    // The rounded ratio is a little too large, and the correction falls a little short: the same in every build.
    EXPECT_EQ(Geometry::getAspectFitModeSizeWithsize({1500, 1000}, {900, 700}).height(), double(0x1.2bfffep+9F));
}

TEST(Geometry, FractionsAndFrameFormsAreInversesWithoutFlip)
{
    const QSizeF container(200, 100);
    const QPointF fraction = Geometry::convertedPointToPercentBase({50, 25}, container);
    EXPECT_EQ(fraction, QPointF(0.25, 0.25));
    EXPECT_EQ(Geometry::convertedPointToFrameBase(fraction, container), QPointF(50, 25));
    EXPECT_EQ(Geometry::convertedPointToPercentBase({-50, 150}, container), QPointF(-0.25, 1.5));

    const QRectF rect = Geometry::convertedRectToPercentBase({50, 25, 100, 10}, container);
    EXPECT_EQ(rect, QRectF(0.25, 0.25, 0.5, 0.1));
    EXPECT_EQ(Geometry::convertedRectToFrameBase(rect, container), QRectF(50, 25, 100, 10));
}

TEST(Geometry, EmptyContainerIsNotGuarded)
{
    const QPointF fraction = Geometry::convertedPointToPercentBase({1, 0}, {0, 0});
    EXPECT_TRUE(std::isinf(fraction.x()));
    EXPECT_TRUE(std::isnan(fraction.y()));
}

} // namespace hazelmark
