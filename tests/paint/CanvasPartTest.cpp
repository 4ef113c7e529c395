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
        const QImage whole = wholeCanvas(wanted, wish.scale);
        EXPECT_EQ(part.pixels(), whole.copy(part.rect())) << &wish - wishes.data();
        const QImage mask = ScaledPainting{painting.steps, kFrame, wish.scale}.mask();
        ASSERT_EQ(mask.size(), whole.size());
        for (int i = 0; i < mask.width() * mask.height(); ++i) {
            const QPoint at(i % mask.width(), i / mask.width());
            ASSERT_EQ(qRed(mask.pixel(at)), qGreen(whole.pixel(at))) << at.x() << ' ' << at.y();
        }
    }
}

} // namespace hazelmark
