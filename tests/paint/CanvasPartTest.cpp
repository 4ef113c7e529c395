#include "CanvasParts.h"

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

TEST(CanvasParts, HasThePixelsOfTheWholeCanvasWhateverWasWantedBefore)
{
    PaintStepList steps = someSteps();
    for (std::size_t i = 3; i < steps.size(); i += 2)
        steps[i].setBrushPixelStep(0.05F); // so much work that snapshots are kept on the way
    PaintStepList others = steps;
    others[13].setEraser(!others[13].eraser());
    struct Wish
    {
        const PaintStepList &steps;
        std::size_t count;
        double scale;
        QRect rect;
    };
    const QRect first(20, 10, 150, 100);
    const QRect next = first.translated(35, 40);
    const std::vector<Wish> wishes = {
        {steps, 25, 1, first},  {steps, 24, 1, first},  {steps, 13, 1, first},  {others, 25, 1, first},
        {others, 20, 1, first}, {others, 25, 1, next},  {others, 18, 1, first}, {steps, 25, 2.5, next},
        {steps, 10, 1, first},  {steps, 11, 2.5, next}, {steps, 1, 2.5, first}, {steps, 25, 1, next},
    };
    CanvasParts parts;
    for (const Wish &wish : wishes) {
        const PaintStepList wanted(wish.steps.begin(), wish.steps.begin() + std::ptrdiff_t(wish.count));
        const ScaledPainting painting{std::make_shared<PaintStepList>(wanted), kFrame, 1};
        const CanvasPart &part = parts.part(painting, wish.scale, wish.rect, 2);
        ASSERT_TRUE(part.rect().contains(wish.rect));
        EXPECT_EQ(part.pixels(), wholeCanvas(wanted, wish.scale).copy(part.rect())) << &wish - wishes.data();
    }
}

} // namespace hazelmark
