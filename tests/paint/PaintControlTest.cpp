#include "PaintControl.h"

#include "PaintCanvas.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(PaintControl, PushesItsDefaultsToTheCanvas)
{
    PaintCanvas canvas;
    const PaintControl control(&canvas);
    EXPECT_EQ(canvas.pointSize(), 66.0F);
    EXPECT_FLOAT_EQ(canvas.brushPixelStep(), 6.6F);
    EXPECT_EQ(canvas.hardness(), 0.5F);
    EXPECT_EQ(canvas.pointAlpha(), 0.5F);
    EXPECT_EQ(canvas.brushColor(), Color());
    EXPECT_FALSE(canvas.eraser());
    EXPECT_EQ(canvas.brush(), PaintControl::brushImageWithHardness(0.5F, false, 0.5F));
    EXPECT_EQ(control.lineWidth(), 50);
}

TEST(PaintControl, CanvasThatIsSetLaterGetsTheDefaultsOnAwaking)
{
    PaintCanvas canvas;
    PaintControl control;
    control.setLineWidth(10);
    control.setPaintView(&canvas);
    EXPECT_EQ(canvas.pointSize(), 0);
    control.awakeFromNib();
    EXPECT_EQ(canvas.pointSize(), 66.0F);
    EXPECT_EQ(control.lineWidth(), 50);
}

TEST(PaintControl, OnlyTheDiameterSetsTheStampSize)
{
    PaintCanvas canvas;
    PaintControl control(&canvas);
    control.setHardness(0);
    control.setLineWidth(40);
    EXPECT_EQ(canvas.pointSize(), 64.8F);
    EXPECT_FLOAT_EQ(canvas.brushPixelStep(), 6.48F);
    control.setHardness(1);
    EXPECT_EQ(canvas.pointSize(), 64.8F);
    EXPECT_EQ(canvas.hardness(), 1);
    control.setBrushImage(QImage(3, 3, QImage::Format_ARGB32)); // not the one that is used
    EXPECT_EQ(canvas.brush(), PaintControl::brushImageWithHardness(1, false, 1));
    control.setLineWidth(40);
    EXPECT_EQ(canvas.pointSize(), 40.8F);
    EXPECT_FLOAT_EQ(canvas.brushPixelStep(), 4.08F);
}

} // namespace hazelmark
