#include "Geometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace hazelmark {

TEST(Geometry, APictureFillsTheBoxAlongOneSide)
{
    for (const auto &[size, box, fitted] :
         {std::tuple{QSizeF{4000, 3000}, QSizeF{800, 800}, QSizeF{800, 600}},
          {{3000, 4000}, {800, 800}, {600, 800}},
          {{100, 50}, {800, 600}, {800, 400}},
          // The first step overshoots the other side, the second one corrects it.
          {{400, 300}, {800, 100}, {800.0 / 6, 100}},
          // The ratio is rounded to single precision before it is used, or the canvas would shift against the photo.
          {{3000, 2000}, {1000, 1000}, {1000, double(float(float(1000.0 / 3000.0) * 2000.0))}},
          // It is a little too large, and the correction falls a little short: the same in every build.
          {{1500, 1000}, {900, 700}, {900, double(0x1.2bfffep+9F)}}}) {
        const QSizeF got = Geometry::getAspectFitModeSizeWithsize(size, box);
        for (const auto &[side, wanted] : {std::pair{got.width(), fitted.width()}, {got.height(), fitted.height()}}) {
            EXPECT_FLOAT_EQ(float(side), float(wanted)) << size.width() << ' ' << box.width();
            EXPECT_EQ(side, double(float(side))) << "single precision throughout";
        }
    }
    EXPECT_EQ(Geometry::getAspectFitModeSizeWithsize({1500, 1000}, {900, 700}).height(), double(0x1.2bfffep+9F));
}

TEST(Geometry, FractionsAndFrameFormsAreInversesWithoutFlip)
{
    const QSizeF container(200, 100);
    EXPECT_EQ(Geometry::convertedRectToPercentBase({-50, 150, 20, 30}, container), QRectF(-0.25, 1.5, 0.1, 0.3));
    EXPECT_EQ(Geometry::convertedRectToFrameBase({-0.25, 1.5, 0.1, 0.3}, container), QRectF(-50, 150, 20, 30));
    const QPointF ofNothing = Geometry::convertedPointToPercentBase({1, 0}, {0, 0});
    EXPECT_TRUE(std::isinf(ofNothing.x()) && std::isnan(ofNothing.y())) << "not guarded";
}

} // namespace hazelmark
