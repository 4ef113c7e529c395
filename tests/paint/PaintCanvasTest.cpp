#include "PaintCanvas.h"

#include "BrushTips.h"
#include "PaintControl.h"
#include "ReferenceStamps.h"

#include <gtest/gtest.h>

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

class Canvas : public ::testing::Test
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

    WatchedCanvas canvas;
    PaintControl control{&canvas};
};

/// The step as the reference draws it, stamp by stamp; lengths in single precision, as the canvas counts them.
void drawReference(QImage &buffer, const PaintStep &step)
{
    const QSize size = buffer.size();
    const double dx = (step.end().x() - step.start().x()) * size.width();
    const double dy = (step.end().y() - step.start().y()) * size.height();
    const int count = std::max(1, int(std::ceil(std::sqrt(float(dx * dx + dy * dy)) / step.brushPixelStep())));
    std::vector<StampCentre> centres;
    for (int i = 0; i < count; ++i) {
        const double x = step.start().x() * size.width() + dx * i / count;
        const double y = step.start().y() * size.height() + dy * i / count;
        centres.push_back({double(float(x)), size.height() - double(float(size.height() - y))});
    }
    stampReference(buffer, step.eraser() ? StampPainter::Mode::Erase : StampPainter::Mode::Paint, step.color(),
                   step.pointSize(), BrushTips::shared().tipForHardness(step.hardness()), centres);
}

} // namespace

TEST_F(Canvas, StrokesAgreeWithTheReferenceAtTwoSizesAndAReplayLeavesTheStateOfItsLastStep)
{
    canvas.mouseDown({100.25, 60.5});
    EXPECT_EQ(canvas.arrDrawedPoints()->front().start(), QPointF(100.25 / 400, 60.5 / 300));
    EXPECT_EQ(canvas.arrDrawedPoints()->front().end(), QPointF(100.25 / 400, 60.5 / 300));
    EXPECT_EQ(canvas.changed, QRect(80, 40, 41, 41));
    const QImage before = canvas.snapshot();
    const QImage copy = before.copy();
    setBrush(30, 0.3F);
    drag({50, 40}, {350.5, 250.25});
    canvas.mouseDragged({100, 200});
    control.setEraser(true);
    setBrush(50, 0);
    drag({10.7, 150}, {380, 140.2});
    const auto steps = canvas.arrDrawedPoints();
    ASSERT_EQ(steps->size(), 6U);
    const PaintStep last = steps->back();
    for (const QSize size : {QSize(400, 300), QSize(200, 150)}) {
        QImage wanted = blankBuffer(size);
        for (const PaintStep &step : *steps)
            drawReference(wanted, step);
        EXPECT_LE(testing::difference(canvas.snapshot(), wanted), 1) << size.width();
        canvas.setCanvasSize({200, 150});
        control.setEraser(false);
        setBrush(10, 0.7F);
        control.setColor({1, 0, 0, 1});
        canvas.restoreDrawedPoints(steps);
        EXPECT_EQ(canvas.paintStepFromPoint(last.start(), last.end()).data(), last.data());
    }
    EXPECT_EQ(before, copy) << "a snapshot is not touched by later strokes";
}

TEST_F(Canvas, FrameIsRealValuedItsBufferTruncatedAndStretchedUntilTheReplay)
{
    canvas.setCanvasSize({1000, 666.67});
    setBrush(20, 1);
    drag({500, 0.5}, {500, 666.67});
    EXPECT_EQ(canvas.arrDrawedPoints()->back().end(), QPointF(0.5, 1));
    const auto kept = canvas.arrDrawedPoints();
    const auto expectLine = [&](QSize size) {
        ASSERT_EQ(canvas.snapshot().size(), size);
        for (const int y : {0, size.height() / 2, size.height() - 1}) {
            EXPECT_EQ(alphaAt(size.width() / 2, y), 255);
            EXPECT_EQ(alphaAt(size.width() / 2 + 12, y), 0);
        }
    };
    expectLine({1000, 666});
    canvas.setCanvasSize({500, 333.335});
    expectLine({500, 333});
    canvas.restoreDrawedPoints(kept);
    expectLine({500, 333});
}

TEST_F(Canvas, StepsThatLeaveTheFrameAreKeptButNotDrawn)
{
    canvas.mouseDown({399, 100});
    const QImage before = canvas.snapshot();
    control.setEraser(true);
    setBrush(80, 0);
    for (const QPointF place : {QPointF(401, 100), {450, 150}, {200, -0.01}, {200, 300.01}})
        canvas.mouseDragged(place);
    EXPECT_EQ(canvas.arrDrawedPoints()->size(), 5U);
    EXPECT_EQ(canvas.snapshot(), before);
    canvas.restoreDrawedPoints(canvas.arrDrawedPoints());
    EXPECT_EQ(canvas.snapshot(), before) << "a replay passes them over too";
}

TEST_F(Canvas, RecordsTakeThePlaceOfTheSessionUndoably)
{
    std::vector<QVariantList> records{{}};
    for (const double y : {50.0, 200.0}) {
        drag({50, y}, {100, y + 20});
        records.push_back(canvas.paintSession()->dataArray());
    }
    canvas.clearDrawing();
    for (const std::size_t i : {1, 2})
        canvas.updatePaintCanvasBySessionDataArray(records[i]);
    for (const std::size_t left : {2, 1, 0}) {
        EXPECT_EQ(canvas.paintSession()->dataArray(), records[left]);
        EXPECT_EQ(alphaAt(60, 50), left > 0 ? 255 : 0) << "its last step is drawn";
        canvas.undoStack().undo();
    }
    EXPECT_EQ(PaintSession(records[2]).dataArray(), records[2]);
}

TEST_F(Canvas, MoreStampsThanThePixelsAreWorthAreDrawnTogetherAndLookTheSame)
{
    canvas.setCanvasSize({100, 80});
    canvas.setPointSize(20);
    QImage wanted = blankBuffer({100, 80});
    for (const auto &[from, to, erases] : {std::tuple(QPointF(0.2, 0.3), QPointF(0.6, 0.7), false),
                                           {QPointF(0.8, 0.6), QPointF(0.802, 0.6), false},
                                           {QPointF(0.3, 0.6), QPointF(0.6, 0.4), true}}) {
        canvas.setHardness(erases ? 1 : 0.4F);
        canvas.setEraser(erases);
        canvas.setBrushPixelStep(float(std::hypot((to.x() - from.x()) * 100, (to.y() - from.y()) * 80) / 6000));
        canvas.appendStep(canvas.paintStepFromPoint(from, to));
        drawReference(wanted, canvas.arrDrawedPoints()->back());
    }
    EXPECT_LE(testing::difference(canvas.snapshot(), wanted), 20); // at the faintest rim

    canvas.setPointSize(90);
    canvas.setEraser(false);
    canvas.setBrushPixelStep(1e-9F);
    for (int i = 0; i < 900; ++i)
        canvas.appendStep(canvas.paintStepFromPoint({0.4, 0.3}, {0.4, 0.33}));
    EXPECT_EQ(alphaAt(40, 25), 255) << "one by one it would take minutes";
    for (const float spacing : {0.0F, -1.0F}) { // ends all the same
        canvas.setBrushPixelStep(spacing);
        canvas.appendStep(canvas.paintStepFromPoint({0, 0}, {1, 1}));
    }
}

} // namespace hazelmark
