#include "PaintCanvas.h"

#include "BrushTips.h"
#include "PaintControl.h"
#include "ReferenceStamps.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

#include <cmath>

namespace hazelmark {

namespace {

constexpr Color kGreen{0, 1, 0, 1};

/// Counts what is reported as changed.
class WatchedCanvas : public PaintCanvas
{
public:
    QRect changed;

protected:
    void bufferChanged(const QRect &rect) override { changed |= rect; }
};

class Canvas : public testing::Test
{
protected:
    Canvas()
    {
        canvas.setCanvasSize({400, 300});
        control.setColor(kGreen);
        setBrush(40, 1);
    }

    void setBrush(float diameter, float hardness)
    {
        control.setHardness(hardness);
        control.setLineWidth(diameter);
    }

    void drag(QPointF from, QPointF to)
    {
        canvas.mouseDown(from);
        canvas.mouseDragged(to);
    }

    int alphaAt(int x, int y) { return qAlpha(canvas.snapshot().pixel(x, y)); }

    bool isBlank() { return canvas.snapshot() == blankBuffer(canvas.bufferSize()); }

    WatchedCanvas canvas;
    PaintControl control{&canvas};
};

/// The centres of a segment's stamps in pixels, as the canvas counts them: lengths in single precision.
std::vector<StampCentre> centresOf(const PaintStep &step, QSize size)
{
    const double dx = (step.end().x() - step.start().x()) * size.width();
    const double dy = (step.end().y() - step.start().y()) * size.height();
    const float length = std::sqrt(float(dx * dx + dy * dy));
    const int count = std::max(1, int(std::ceil(length / step.brushPixelStep())));
    std::vector<StampCentre> centres;
    for (int i = 0; i < count; ++i) {
        const double x = step.start().x() * size.width() + dx * i / count;
        const double y = step.start().y() * size.height() + dy * i / count;
        centres.push_back({double(float(x)), size.height() - double(float(size.height() - y))});
    }
    return centres;
}

} // namespace

TEST_F(Canvas, ClickIsOneStepWithEqualEndsAndOneStamp)
{
    canvas.mouseDown({100.25, 60.5});
    ASSERT_EQ(canvas.arrDrawedPoints()->size(), 1U);
    const PaintStep &step = canvas.arrDrawedPoints()->front();
    EXPECT_EQ(step.start(), QPointF(100.25 / 400, 60.5 / 300));
    EXPECT_EQ(step.end(), step.start());
    EXPECT_EQ(step.color(), kGreen);
    EXPECT_EQ(step.alpha(), 0.5F);

    QImage wanted = blankBuffer({400, 300});
    stampReference(wanted, StampPainter::Mode::Paint, kGreen, 40.8F, BrushTips::shared().tipForHardness(1),
                   {{100.25, 60.5}});
    EXPECT_LE(largestDifference(canvas.snapshot(), wanted), 1);
    EXPECT_EQ(canvas.changed, QRect(80, 40, 41, 41));
}

TEST_F(Canvas, SegmentLeavesItsEndToTheNextOne)
{
    // Stamps of one pixel, 10 apart.
    canvas.setPointSize(1);
    canvas.setBrushPixelStep(10);
    const auto stampsOf = [this](QPointF from, QPointF to) {
        canvas.clearDrawing();
        canvas.appendStep(canvas.paintStepFromPoint({from.x() / 400, from.y() / 300}, {to.x() / 400, to.y() / 300}));
        std::vector<int> columns;
        for (int x = 0; x < 400; ++x)
            if (alphaAt(x, 50) > 0)
                columns.push_back(x);
        return columns;
    };
    EXPECT_EQ(stampsOf({100.5, 50.5}, {100.5, 50.5}), std::vector<int>({100}));
    EXPECT_EQ(stampsOf({100.5, 50.5}, {107.5, 50.5}), std::vector<int>({100}));
    EXPECT_EQ(stampsOf({100.5, 50.5}, {130.5, 50.5}), std::vector<int>({100, 110, 120}));
    // Longer by more than half a spacing: one more, at even distances.
    EXPECT_EQ(stampsOf({100.5, 50.5}, {136.5, 50.5}), std::vector<int>({100, 109, 118, 127}));
}

TEST_F(Canvas, StrokesAgreeWithTheReferenceAtTwoSizes)
{
    setBrush(30, 0.3F);
    drag({50, 40}, {350.5, 250.25});
    canvas.mouseDragged({100, 200});
    control.setEraser(true);
    setBrush(50, 0);
    drag({10.7, 150}, {380, 140.2});
    const auto steps = canvas.arrDrawedPoints();
    ASSERT_EQ(steps->size(), 5U);

    for (const QSize size : {QSize(400, 300), QSize(200, 150)}) {
        canvas.setCanvasSize(size);
        canvas.restoreDrawedPoints(steps);
        QImage wanted = blankBuffer(size);
        for (const PaintStep &step : *steps) {
            stampReference(wanted, step.eraser() ? StampPainter::Mode::Erase : StampPainter::Mode::Paint, step.color(),
                           step.pointSize(), BrushTips::shared().tipForHardness(step.hardness()),
                           centresOf(step, size));
        }
        EXPECT_LE(largestDifference(canvas.snapshot(), wanted), 1) << size.width();
    }
}

TEST_F(Canvas, FrameIsRealValuedAndItsBufferTruncated)
{
    canvas.setCanvasSize({1000, 666.67});
    setBrush(20, 1);
    drag({500, 0.5}, {500, 666.67});
    EXPECT_EQ(canvas.arrDrawedPoints()->back().end(), QPointF(0.5, 1));
    const QImage pixels = canvas.snapshot();
    ASSERT_EQ(pixels.size(), QSize(1000, 666));
    EXPECT_EQ(qAlpha(pixels.pixel(500, 0)), 255);
    EXPECT_EQ(qAlpha(pixels.pixel(500, 665)), 255);

    const auto kept = canvas.arrDrawedPoints();
    canvas.setCanvasSize({500, 333.335});
    canvas.restoreDrawedPoints(kept);
    EXPECT_EQ(canvas.snapshot().size(), QSize(500, 333));
    EXPECT_EQ(alphaAt(250, 0), 255);
    EXPECT_EQ(alphaAt(250, 332), 255);
    EXPECT_EQ(alphaAt(262, 166), 0);
}

TEST_F(Canvas, StepsThatLeaveTheFrameAreKeptButNotDrawn)
{
    canvas.mouseDown({399, 100});
    canvas.mouseDragged({401, 100});
    const QImage before = canvas.snapshot();
    control.setEraser(true);
    setBrush(80, 0);
    canvas.mouseDragged({450, 100});
    canvas.mouseDragged({450, 150});
    canvas.mouseDragged({200, -0.01});
    EXPECT_EQ(canvas.arrDrawedPoints()->size(), 5U);
    EXPECT_EQ(canvas.snapshot(), before);
    // A replay passes them over too: the state is the one of the only step that lies inside.
    canvas.restoreDrawedPoints(canvas.arrDrawedPoints());
    EXPECT_EQ(canvas.snapshot(), before);
    EXPECT_EQ(canvas.hardness(), 1);
    EXPECT_FALSE(canvas.eraser());
    EXPECT_EQ(canvas.pointSize(), 40.8F);
}

TEST_F(Canvas, ReplayGivesThePixelsThatDrawingGaveAndLeavesTheStateOfItsLastStep)
{
    canvas.setCanvasSize({300, 1000});
    for (int i = 0; i < 60; ++i) {
        control.setEraser(i % 5 == 4);
        setBrush(float(10 + i * 7 % 90), float(i % 3) / 2);
        drag({i * 37 % 300 + 0.3, i * 173 % 1000 + 0.7}, {i * 91 % 300 + 0.1, i * 57 % 1000 + 0.9});
    }
    const QImage before = canvas.snapshot().copy();
    const auto steps = canvas.arrDrawedPoints();
    control.setEraser(!steps->back().eraser());
    setBrush(10, 0.7F);
    control.setColor({1, 0, 0, 1});
    canvas.restoreDrawedPoints(steps);
    EXPECT_EQ(canvas.snapshot(), before);
    EXPECT_EQ(canvas.arrDrawedPoints(), steps);
    const PaintStep next = canvas.paintStepFromPoint(steps->back().start(), steps->back().end());
    EXPECT_EQ(next.data(), steps->back().data());
}

TEST_F(Canvas, ClearingKeepsAListThatSomebodyHoldsAndTheStateOfItsLastStep)
{
    drag({50, 50}, {100, 100});
    const auto kept = canvas.arrDrawedPoints();
    control.setEraser(true);
    setBrush(10, 0.5F);
    canvas.clearDrawing();
    EXPECT_TRUE(isBlank());
    EXPECT_EQ(kept->size(), 2U);
    EXPECT_TRUE(canvas.arrDrawedPoints()->empty());
    EXPECT_NE(canvas.arrDrawedPoints(), kept);
    EXPECT_FALSE(canvas.eraser());
    EXPECT_EQ(canvas.pointSize(), 40.8F);

    canvas.restoreDrawedPoints(nullptr);
    EXPECT_TRUE(isBlank());
    canvas.restoreDrawedPoints(kept);
    EXPECT_EQ(alphaAt(75, 75), 255);
}

TEST_F(Canvas, RemovingStampsWithAColourThatChangesNothing)
{
    drag({50, 50}, {100, 100});
    const QImage before = canvas.snapshot();
    control.setEraser(true);
    canvas.removeAllPixelsDrawed();
    EXPECT_EQ(canvas.snapshot(), before);
    EXPECT_FALSE(canvas.eraser());
    canvas.arrDrawedPoints()->clear();
    canvas.removeAllPixelsDrawed();
    EXPECT_TRUE(isBlank());
}

TEST_F(Canvas, SnapshotIsNotTouchedByLaterStrokes)
{
    const QImage blank = canvas.snapshot();
    EXPECT_EQ(blank.size(), QSize(400, 300));
    EXPECT_EQ(blank.format(), QImage::Format_RGBA8888_Premultiplied);
    EXPECT_TRUE(isBlank());
    canvas.mouseDown({100, 100});
    const QImage dot = canvas.snapshot();
    const QImage copy = dot.copy();
    canvas.mouseDown({130, 100});
    EXPECT_EQ(qAlpha(blank.pixel(100, 100)), 0);
    EXPECT_EQ(dot, copy);
    canvas.setCanvasSize({});
    EXPECT_TRUE(canvas.snapshot().isNull());
    canvas.mouseDown({0, 0});
    EXPECT_EQ(canvas.arrDrawedPoints()->size(), 3U);
}

TEST_F(Canvas, IsStretchedBetweenAResizeAndTheReplay)
{
    drag({200, 150}, {300, 150});
    canvas.setCanvasSize({200, 150});
    EXPECT_EQ(alphaAt(120, 75), 255);
    EXPECT_EQ(alphaAt(120, 95), 0);
    canvas.mouseDown({30, 30});
    EXPECT_EQ(alphaAt(30, 30), 255);
    EXPECT_EQ(alphaAt(120, 75), 255);
    canvas.setCanvasSize({800, 600});
    EXPECT_EQ(alphaAt(480, 300), 255);
    EXPECT_EQ(canvas.snapshot().format(), QImage::Format_RGBA8888_Premultiplied);
}

TEST_F(Canvas, DefaultColourPaintsNothingAndSpacingOfNothingEndsAllTheSame)
{
    canvas.setBrushColor({}); // the default
    drag({50, 50}, {100, 100});
    EXPECT_TRUE(isBlank());
    canvas.setBrushColor(kGreen);
    for (const float spacing : {0.0F, 1e-30F, -1.0F}) {
        canvas.setPointSize(2);
        canvas.setBrushPixelStep(spacing);
        canvas.appendStep(canvas.paintStepFromPoint({0, 0}, {1, 1}));
    }
    EXPECT_GT(alphaAt(0, 0), 0);
}

TEST_F(Canvas, MoreStampsThanThePixelsAreWorthAreDrawnTogetherAndLookTheSame)
{
    canvas.setPointSize(50);
    QImage wanted = blankBuffer({400, 300});
    for (const auto &[from, to, erases] : {std::tuple(QPointF(0.2, 0.3), QPointF(0.55, 0.6), false),
                                           {QPointF(0.6, 0.6), QPointF(0.601, 0.6), false},
                                           {QPointF(0.3, 0.5), QPointF(0.5, 0.35), true}}) {
        canvas.setHardness(erases ? 1 : 0.4F);
        canvas.setEraser(erases);
        canvas.setBrushPixelStep(float(std::hypot((to.x() - from.x()) * 400, (to.y() - from.y()) * 300) / 9000));
        const PaintStep step = canvas.paintStepFromPoint(from, to);
        canvas.appendStep(step);
        const BrushTexture tip(BrushTips::shared().tipForHardness(step.hardness()));
        const auto mode = erases ? StampPainter::Mode::Erase : StampPainter::Mode::Paint;
        StampPainter(mode, kGreen, 50, tip).stamp(StampTarget(wanted), centresOf(step, {400, 300}));
    }
    EXPECT_LE(largestDifference(canvas.snapshot(), wanted), 20);

    // One by one it would take minutes.
    QElapsedTimer timer;
    timer.start();
    canvas.setBrushPixelStep(1e-9F);
    for (int i = 0; i < 900; ++i)
        canvas.appendStep(canvas.paintStepFromPoint({0.4, 0.3}, {0.4, 0.33}));
    EXPECT_LT(timer.elapsed(), 10000);
}

TEST_F(Canvas, ReplacingTheSessionCanBeUndone)
{
    canvas.mouseDown({100, 100});
    canvas.mouseDown({200, 200});
    const QVariantList records = canvas.paintSession()->dataArray();
    canvas.clearDrawing();
    canvas.updatePaintCanvasBySessionDataArray(records.first(1));
    EXPECT_EQ(alphaAt(100, 100), 255);
    canvas.updatePaintCanvasBySessionDataArray(records);
    EXPECT_EQ(canvas.arrDrawedPoints()->size(), 2U);
    EXPECT_EQ(alphaAt(200, 200), 255);
    canvas.undoStack().undo();
    EXPECT_EQ(canvas.paintSession()->dataArray(), records.first(1));
    canvas.undoStack().undo();
    EXPECT_TRUE(canvas.arrDrawedPoints()->empty());
    EXPECT_TRUE(isBlank());
    canvas.undoStack().redo();
    EXPECT_EQ(canvas.paintSession()->dataArray(), records.first(1));
}

} // namespace hazelmark
