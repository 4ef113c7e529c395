#include "PaintView.h"
#include "../support/Timers.h"
#include "DrawTrackingView.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PaintControl.h"
#include "ProcessState.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QPointingDevice>
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

TEST_F(Window, LeftButtonPaintsASegmentAMove)
{
    int ended = 0;
    const auto token = count(kNotificationBurshDrawedRegionUpdated, ended);
    show();
    QTest::mousePress(&view, Qt::LeftButton, {}, {100, 150});
    QTest::mouseMove(&view, {200, 150});
    QTest::mouseMove(&view, {300, 200});
    EXPECT_EQ(steps(), 3U);
    EXPECT_EQ(ended, 0);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {300, 200});
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(view.arrDrawedPoints()->back().start(), QPointF(0.5, 0.5));
    EXPECT_EQ(view.arrDrawedPoints()->back().end(), QPointF(0.75, 200.0 / 300));
    EXPECT_EQ(alphaAt(150, 150), 255);
    EXPECT_EQ(alphaAt(250, 150), 0);

    // Moves without a button and other buttons do nothing.
    QTest::mouseMove(&view, {10, 10});
    QTest::mouseClick(&view, Qt::RightButton, {}, {50, 50});
    EXPECT_EQ(steps(), 3U);
    EXPECT_EQ(ended, 1);
}

TEST_F(Window, PenAndFingerPaintLikeTheMouse)
{
    int ended = 0;
    const auto token = count(kNotificationBurshDrawedRegionUpdated, ended);
    show();
    EXPECT_FALSE(pen(QEvent::TabletMove, {50, 50}, 0));
    EXPECT_TRUE(pen(QEvent::TabletPress, {100.25, 100}, 0.1));
    EXPECT_TRUE(pen(QEvent::TabletMove, {150, 100}, 0.9));
    EXPECT_TRUE(pen(QEvent::TabletRelease, {150, 100}, 0));
    EXPECT_EQ(steps(), 2U);
    EXPECT_EQ(ended, 1);
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
}

/// The main screen hides the canvas when it is told that the pointer left.
TEST_F(Window, AStrokeThatLeavesThePhotoGoesOnThoughNoButtonIsHeld)
{
    int ended = 0;
    tracking.setGeometry(view.geometry());
    const auto endToken = count(kNotificationBurshDrawedRegionUpdated, ended);
    const auto outToken =
        NotificationCenter::defaultCenter().addObserver(kNotificationMouseout, [&](const auto &) { view.hide(); });
    show();
    std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    point({100, 100});
    QTest::touchEvent(&view, screen.get()).press(1, {50, 60});
    point({10, 10}); // the pointer goes along
    QTest::touchEvent(&view, screen.get()).move(1, {-40, 60});
    letTimersFire(kPoll); // both views have looked where it is
    EXPECT_TRUE(view.isVisible());
    EXPECT_EQ(ended, 0);
    QTest::touchEvent(&view, screen.get()).move(1, {100, 60});
    QTest::touchEvent(&view, screen.get()).release(1, {100, 60});
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(steps(), 3U);
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
}

} // namespace hazelmark

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
