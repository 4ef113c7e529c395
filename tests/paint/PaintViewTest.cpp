#include "PaintView.h"
#include "../support/Timers.h"
#include "DrawTrackingView.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PaintControl.h"
#include "ProcessState.h"

#include <gtest/gtest.h>

#include <QCursor>
#include <QDialog>
#include <QPointingDevice>
#include <QScreen>
#include <QTabletEvent>
#include <QTest>

namespace hazelmark {

namespace {

class Window : public testing::Test
{
protected:
    Window()
    {
        ProcessState::shared() = {false, true};
        window.setGeometry(50, 50, 500, 400);
        tracking.stackUnder(&view);
        window.setStyleSheet(u"background: black"_qs);
        view.setFrame({50, 40, 400, 300});
        control.setColor({0, 1, 0, 1});
        control.setHardness(1);
        control.setLineWidth(40);
    }
    ~Window() override { ProcessState::shared() = {}; }

    void show()
    {
        QCursor::setPos(10, 10);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    /// Moves the pointer to a place in the window and lets the poll see it.
    void point(QPoint place)
    {
        QCursor::setPos(window.mapToGlobal(place));
        letTimersFire(kPoll);
    }

    bool pen(QEvent::Type type, QPointF at, double pressure = 0.5)
    {
        QTabletEvent event(type, QPointingDevice::primaryPointingDevice(), at, view.mapToGlobal(at), pressure, 0, 0, 0,
                           0, 0, {}, type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                           type == QEvent::TabletRelease ? Qt::NoButton : Qt::LeftButton);
        QCoreApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }

    int alphaAt(int x, int y) { return qAlpha(view.snapshot().pixel(x, y)); }
    std::size_t steps() const { return view.arrDrawedPoints()->size(); }

    /// The window after a change, which is painted anew by itself wherever it looks otherwise.
    QImage seenAfter(const std::function<void()> &change)
    {
        change();
        const QImage wanted = window.grab().toImage();
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return window.screen()->grabWindow(window.winId()).toImage().convertToFormat(wanted.format()) == wanted;
        }));
        return wanted;
    }
    /// `part` pixel for pixel where it lies on the enlarged canvas, and around it the canvas's own pixels.
    void expectShown(const QImage &seen, const QRectF &whole, const QRect &visible, const CanvasPart &part)
    {
        const double zoom = view.zoom() / part.scale();
        const QRectF fine(whole.topLeft() + QPointF(part.rect().topLeft()) * zoom, QSizeF(part.rect().size()) * zoom);
        const QImage coarse = view.snapshot().scaled(whole.size().toSize(), {}, Qt::SmoothTransformation);
        for (int y = 0; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                const bool isFine = fine.toAlignedRect().contains(x, y);
                const bool isRim = isFine != QRectF(fine.adjusted(1, 1, -1, -1)).contains(QPointF(x, y));
                const QPoint at = isFine ? QPoint((QPointF(x, y) - fine.topLeft()).toPoint() / zoom)
                                         : QPoint(x, y) - whole.topLeft().toPoint();
                const int green = visible.contains(x, y) ? qGreen((isFine ? part.pixels() : coarse).pixel(at)) : 0;
                if (zoom != 1 && isRim)
                    continue;
                ASSERT_NEAR(qGreen(seen.pixel(x, y)), green * view.opacity(), isFine ? 1.5 : 6) << x << ' ' << y;
            }
        }
    }

    NotificationCenter::Token count(QLatin1String name, int &counter)
    {
        return NotificationCenter::defaultCenter().addObserver(name, [&](const QVariantMap &) { ++counter; });
    }

    const int kPoll = 150; ///< milliseconds; the views look where the pointer is ten times a second
    QWidget window;
    PaintView view{&window};
    DrawTrackingView tracking{view, &window};
    PaintControl control{&view};
};

} // namespace

TEST_F(Window, MousePenAndFingerPaintASegmentAMove)
{
    int ended = 0;
    const auto token = count(kNotificationBurshDrawedRegionUpdated, ended);
    show();
    QTest::mousePress(&view, Qt::LeftButton, {}, {200, 150});
    QTest::mouseMove(&view, {300, 200});
    EXPECT_EQ(ended, 0);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {300, 200});
    EXPECT_EQ(view.arrDrawedPoints()->back().start(), QPointF(0.5, 0.5));
    EXPECT_EQ(view.arrDrawedPoints()->back().end(), QPointF(0.75, 200.0 / 300));
    // Moves without a button and other buttons do nothing.
    QTest::mouseMove(&view, {10, 10});
    QTest::mouseClick(&view, Qt::RightButton, {}, {50, 50});
    EXPECT_FALSE(pen(QEvent::TabletMove, {50, 50}, 0));
    EXPECT_TRUE(pen(QEvent::TabletPress, {100.25, 100}, 0.1));
    EXPECT_TRUE(pen(QEvent::TabletMove, {150, 100}, 0.9));
    EXPECT_TRUE(pen(QEvent::TabletRelease, {150, 100}, 0));
    EXPECT_EQ(steps(), 4U);
    EXPECT_EQ(ended, 2);
    EXPECT_EQ(view.arrDrawedPoints()->back().start().x(), 100.25 / 400);

    // A finger comes down on the view below, and the canvas takes it over.
    tracking.setGeometry(view.geometry());
    view.hide();
    const auto inToken =
        NotificationCenter::defaultCenter().addObserver(kNotificationMouseIn, [&](const auto &) { view.show(); });
    std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    QTest::touchEvent(&tracking, screen.get()).press(3, {50, 250});
    QTest::touchEvent(&tracking, screen.get()).release(3, {50, 250});
    EXPECT_TRUE(view.isVisible());
    EXPECT_EQ(alphaAt(50, 250), 255);
    const std::size_t before = steps();
    ended = 0;
    QTest::touchEvent(&view, screen.get()).press(7, {50, 200});
    QTest::touchEvent(&view, screen.get()).move(7, {90, 200});
    QTest::touchEvent(&view, screen.get()).move(7, {120, 210}).press(8, {300, 20});
    QTest::touchEvent(&view, screen.get()).release(7, {120, 210}).move(8, {310, 20});
    QTest::touchEvent(&view, screen.get()).release(8, {310, 20});
    EXPECT_EQ(steps(), before + 3);
    EXPECT_EQ(alphaAt(80, 200), 255);
    EXPECT_EQ(alphaAt(300, 20), 0);
    EXPECT_EQ(ended, 1);
}

TEST_F(Window, FrameBetweenPointsIsPaintedAndShownThere)
{
    view.setFrame({50.5, 40.25, 400, 266.67});
    EXPECT_EQ(view.geometry(), QRect(50, 40, 401, 267));
    EXPECT_EQ(view.snapshot().size(), QSize(400, 266));
    show();
    QTest::mouseClick(&view, Qt::LeftButton, {}, {100, 100});
    EXPECT_EQ(view.arrDrawedPoints()->front().start(), QPointF(99.5 / 400, 99.75 / 266.67));
    view.setOpacity(0.6);
    const QImage shown = window.grab().toImage();
    EXPECT_NEAR(qGreen(shown.pixel(150, 140)), 153, 1);
    EXPECT_EQ(alphaAt(99, 99), 255);
}

TEST_F(Window, IsShownEnlargedAndFinerWhereFinerPixelsLie)
{
    control.setHardness(0);
    control.setLineWidth(120);
    view.mouseDown({100, 100});
    view.mouseDragged({300, 200});
    show();
    const QRect visible(0, 10, 480, 370);
    for (const auto &[zoom, scale] : {std::pair(2.0, 2.0), {1.6, 1.6}, {2.0, 1.25}}) {
        const QRectF whole(QPointF(-150, -80), QSizeF(400, 300) * zoom);
        view.setShown(whole, visible);
        EXPECT_EQ(view.zoom(), zoom);
        EXPECT_EQ(view.geometry(), visible);
        const QRect rect(QPoint(160, 130), QSize(150, 90) * scale);
        QImage pixels(rect.size(), QImage::Format_RGBA8888_Premultiplied);
        pixels.fill(QColor(0, 77, 0));
        for (int x = 0; scale == zoom && x < rect.width(); ++x)
            for (int y = 0; y < rect.height(); ++y)
                pixels.setPixel(x, y, qRgba(0, (x * 37 + y * 91) % 256, 0, 255));
        const PaintStepList before = *view.arrDrawedPoints();
        CanvasPart part = CanvasPart::ofPixels({400, 300}, scale, rect, pixels, before.size());
        expectShown(seenAfter([&] { view.setCanvasPart(part, before); }), whole, visible, part);
        expectShown(seenAfter([&] { view.setOpacity(0.6); }), whole, visible, part);
        const QPointF place(250, 200);
        control.setZoom(zoom * 4);
        const QImage painted = seenAfter([&] { view.beginKeyStroke(place - visible.topLeft()); });
        EXPECT_NEAR(view.arrDrawedPoints()->back().start().x(), (place.x() - whole.x()) / whole.width(), 1e-9);
        EXPECT_NEAR(view.arrDrawedPoints()->back().start().y(), (place.y() - whole.y()) / whole.height(), 1e-9);
        part.drawOn(*view.arrDrawedPoints(), 1);
        if (scale == zoom)
            expectShown(painted, whole, visible, part);
        // What lies beside the part in sight lies beside the canvas.
        view.continueKeyStroke({-20, 390});
        EXPECT_EQ(view.arrDrawedPoints()->back().end(), QPointF(-20.0 / 400, 320.0 / 300));
        view.continueKeyStroke({500, -30});
        EXPECT_EQ(view.arrDrawedPoints()->back().end(), QPointF(420.0 / 400, -30.0 / 300));
        view.endKeyStroke();
        expectShown(seenAfter([&] { view.restoreDrawedPoints(std::make_shared<PaintStepList>(before)); }), whole,
                    visible, {});
        view.setOpacity(1);
    }
    view.setFrame({50, 40, 400, 300});
    expectShown(window.grab().toImage(), view.frame(), view.geometry(), {});
}

TEST_F(Window, StackedViewsShownAndHiddenOnNoticeComeToRest)
{
    int in = 0, out = 0;
    tracking.setGeometry(view.geometry());
    view.hide();
    const auto inToken = NotificationCenter::defaultCenter().addObserver(kNotificationMouseIn, [&](const auto &) {
        ++in;
        view.show();
    });
    const auto outToken = NotificationCenter::defaultCenter().addObserver(kNotificationMouseout, [&](const auto &) {
        ++out;
        view.hide();
        tracking.show();
    });
    show();
    point({100, 100});
    EXPECT_TRUE(view.isVisible());
    point({10, 10});
    EXPECT_FALSE(view.isVisible());
    point({120, 100});
    EXPECT_TRUE(view.isVisible());
    letTimersFire(kPoll);
    EXPECT_LE(in, 4); // one a view and coming
    EXPECT_LE(out, 2);

    // Nothing is hidden while a button is held, wherever the pointer goes.
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, {120, 100});
    point({5, 100});
    EXPECT_TRUE(view.isVisible());
    point({200, 200});
    EXPECT_EQ(steps(), 3U);
    point({5, 100});
    EXPECT_TRUE(view.isVisible());
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, {5, 100});
    letTimersFire(kPoll);
    EXPECT_FALSE(view.isVisible());

    // Nor during the stroke of a finger, which holds none.
    std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    point({100, 100});
    QTest::touchEvent(&view, screen.get()).press(1, {50, 60});
    point({10, 10});
    EXPECT_TRUE(view.isVisible());
    QTest::touchEvent(&view, screen.get()).release(1, {50, 60});
    EXPECT_TRUE(QTest::qWaitFor([this] { return !view.isVisible(); })) << "now that it is over";
}

TEST_F(Window, AStrokeWhoseEndCannotComeIsEndedWithWhatIsPainted)
{
    int ended = 0;
    const auto token = count(kNotificationBurshDrawedRegionUpdated, ended);
    show();
    QDialog sheet(&window);
    sheet.setWindowModality(Qt::WindowModal);
    const std::pair<std::function<void()>, std::function<void()>> interruptions[]{
        {[&] { view.hide(); }, [&] { view.show(); }},
        {[&] { view.setEnabled(false); }, [&] { view.setEnabled(true); }},
        {[&] { sheet.open(); }, [&] { sheet.close(); }},
    };
    int expected = 0;
    for (const auto &[interrupt, resume] : interruptions) {
        QTest::mousePress(&view, Qt::LeftButton, {}, {100, 150});
        QTest::mouseMove(&view, {200, 150});
        EXPECT_TRUE(view.isStrokeUnderWay());
        const std::size_t before = steps();
        interrupt();
        EXPECT_EQ(ended, ++expected);
        EXPECT_EQ(steps(), before);
        resume();
        QTest::mouseMove(&view, {300, 150});
        QTest::mouseRelease(&view, Qt::LeftButton, {}, {300, 150});
        EXPECT_EQ(ended, expected) << "once";
        EXPECT_EQ(steps(), before);
    }
}

TEST_F(Window, CursorIsACircleOfTheStampSize)
{
    for (const float size : {5.0F, 66.0F, 486.0F}) {
        view.setPointSize(size);
        for (const bool erases : {false, true}) {
            view.setEraser(erases);
            const QImage cursor = view.cursorImage();
            ASSERT_EQ(cursor.width(), int(size) + 1);
            // The lines lie half on each of two pixels: white alone outermost, the colour alone innermost.
            const int middle = int(size / 2);
            const QColor outer = cursor.pixelColor(middle, 0);
            EXPECT_EQ(outer.rgb(), qRgb(255, 255, 255));
            EXPECT_GT(outer.alpha(), 60);
            const QColor inner = cursor.pixelColor(middle, 2);
            EXPECT_EQ(inner.rgb(), erases ? qRgb(255, 0, 0) : qRgb(0, 255, 0));
            EXPECT_GT(inner.alpha(), 60);
            EXPECT_EQ(cursor.pixelColor(0, 0).alpha(), 0);
        }
    }
    show();
    view.setPointSize(66);
    view.mouseEntered();
    EXPECT_EQ(view.cursor().hotSpot(), QPoint(66, 66)) << "as it always was when the pointer comes";
    point({100, 100});
    const auto isShown = [&](bool erases) {
        view.setEraser(erases);
        return QTest::qWaitFor([this] {
            return view.cursor().hotSpot() == QPoint(33, 33) &&
                   view.cursor().pixmap().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied) ==
                       view.cursorImage();
        });
    };
    EXPECT_TRUE(isShown(true) && isShown(false));
    const auto isArrow = [this] { return view.cursor().shape() == Qt::ArrowCursor; };
    ProcessState::shared().isUiDisabled = true;
    EXPECT_TRUE(QTest::qWaitFor(isArrow));
    ProcessState::shared().isUiDisabled = false;
    EXPECT_TRUE(isShown(true));
    point({10, 10});
    EXPECT_TRUE(QTest::qWaitFor(isArrow));
}

} // namespace hazelmark
