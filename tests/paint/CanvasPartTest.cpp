#include "CanvasPart.h"

#include "PaintCanvas.h"
#include "PaintControl.h"
#include "ScaledPainting.h"

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

constexpr QSizeF kFrame(300.5, 200.25);

/// Soft and hard, painting and erasing, and one that leaves the frame.
PaintStepList someSteps()
{
    PaintCanvas canvas;
    canvas.setCanvasSize(kFrame);
    PaintControl control(&canvas);
    control.setColor({0, 1, 0, 1});
    for (int i = 0; i < 12; ++i) {
        control.setHardness(i % 3 == 0 ? 1.0F : 0.2F);
        control.setLineWidth(float(10 + 7 * i));
        control.setEraser(i % 4 == 3);
        canvas.mouseDown({20.0 + 20 * i, 30.0 + 11 * i});
        canvas.mouseDragged({250.0 - 13 * i, 20.0 + 15 * i});
    }
    canvas.mouseDragged({350, 100});
    return *canvas.arrDrawedPoints();
}

QImage wholeCanvas(const PaintStepList &steps, double scale)
{
    PaintStepList larger = steps;
    for (PaintStep &step : larger) {
        step.setCanvasWidth(0);
        step.setPointSize(float(step.pointSize() * scale));
        step.setBrushPixelStep(float(step.brushPixelStep() * scale));
    }
    PaintCanvas canvas;
    canvas.setCanvasSize(kFrame * scale);
    canvas.restoreDrawedPoints(std::make_shared<PaintStepList>(larger));
    return canvas.snapshot();
}

} // namespace

TEST(CanvasPart, HasThePixelsOfTheWholeCanvasHoweverItCameThere)
{
    const PaintStepList steps = someSteps();
    for (const double scale : {1.0, 2.5, 4.0}) {
        const QImage whole = wholeCanvas(steps, scale);
        const QSize size = whole.size();
        ASSERT_EQ(CanvasPart::canvasSize(kFrame, scale), size);
        const QRect rect(size.width() / 4, size.height() / 3, size.width() / 3, size.height() / 3);

        // Steps that come one after the other, and a part that moves about meanwhile.
        CanvasPart part(kFrame, scale, QRect(-5, -5, size.width() / 2, size.height() / 2));
        part.drawOn(PaintStepList(steps.begin(), steps.begin() + 9), 1);
        const CanvasPart moved = part.movedTo(rect, steps, 2);
        CanvasPart drawn = moved;
        EXPECT_EQ(drawn.stepCount(), 9U);
        drawn.drawOn(steps, 2);
        EXPECT_EQ(drawn.pixels(), whole.copy(rect)) << scale;

        // The last strokes taken back, and drawn again.
        for (const std::size_t count : {std::size_t(13), std::size_t(12), std::size_t(5), std::size_t(1)}) {
            const PaintStepList fewer(steps.begin(), steps.begin() + std::ptrdiff_t(count));
            ASSERT_TRUE(drawn.isAheadOf(fewer, steps));
            EXPECT_FALSE(drawn.isAheadOf(steps, steps));
            drawn.takeBack(steps, count, 2);
            EXPECT_EQ(drawn.stepCount(), count);
            EXPECT_EQ(drawn.pixels(), wholeCanvas(fewer, scale).copy(rect)) << count << " at " << scale;
        }
        drawn.drawOn(steps, 2);
        EXPECT_EQ(drawn.pixels(), whole.copy(rect)) << scale;

        const QImage mask = ScaledPainting{std::make_shared<PaintStepList>(steps), kFrame, scale}.mask();
        ASSERT_EQ(mask.size(), size);
        int different = 0;
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                different += mask.constScanLine(y)[x] != whole.constScanLine(y)[4 * x + 1];
        EXPECT_EQ(different, 0) << scale;
        PaintStepList others = steps;
        others[3].setEraser(!others[3].eraser());
        EXPECT_TRUE(part.isOf(steps, steps));
        EXPECT_FALSE(part.isOf(others, steps)) << "a step before has become another";
    }
}

} // namespace hazelmark
