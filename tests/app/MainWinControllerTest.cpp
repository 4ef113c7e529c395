#include "MainWinController.h"
#include "Fakes.h"
#include "NotificationNames.h"
#include "TitlebarWindow.h"

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

class MainWinControllerTest : public testing::Test
{
protected:
    std::unique_ptr<MainWinController> make()
    {
        return std::make_unique<MainWinController>([this] {
            ++m_screensMade;
            auto controller = std::make_unique<FakeScreenController>();
            new QWidget(controller->m_view);
            new QWidget(controller->m_view);
            return controller;
        });
    }

    FakeDesktop m_desktop;
    int m_screensMade = 0;
};

struct FrameCase
{
    QSizeF visible;
    QRectF frame;
};

class MainWindowFrameTest : public testing::TestWithParam<FrameCase>
{
};

} // namespace

TEST_P(MainWindowFrameTest, IsNineTenthsOfTheScreenButNeverTooSmall)
{
    const QRectF frame = MainWinController::frameForVisibleSize(GetParam().visible);
    EXPECT_NEAR(frame.x(), GetParam().frame.x(), 1e-3);
    EXPECT_NEAR(frame.y(), GetParam().frame.y(), 1e-3);
    EXPECT_NEAR(frame.width(), GetParam().frame.width(), 1e-3);
    EXPECT_NEAR(frame.height(), GetParam().frame.height(), 1e-3);
}

INSTANTIATE_TEST_SUITE_P(Screens, MainWindowFrameTest,
                         testing::Values(FrameCase{{1280, 800}, {64, 40, 1220, 720}},
                                         FrameCase{{1024, 700}, {51.2, 35, 1220, 700}},
                                         FrameCase{{2560, 1440}, {128, 72, 2304, 1296}}));

TEST_F(MainWinControllerTest, SetsTheWindowUpAroundTheMainScreen)
{
    m_desktop.observe({kNotificationSetupHeader});
    const auto controller = make();
    TitlebarWindow *window = controller->windowMain();
    EXPECT_EQ(m_screensMade, 1);
    EXPECT_EQ(controller->viewController()->title(), QStringLiteral("MainScreenVC"));
    EXPECT_EQ(controller->viewController()->representedObject(), 2);
    EXPECT_EQ(m_desktop.m_posted.size(), 1);
    EXPECT_EQ(m_desktop.m_lastUserInfo.value(kWindowObjectKey).value<QObject *>(), window);
    // 5 % of the visible size, its origin not added.
    EXPECT_EQ(window->frame(), QRect(80, 50, 1440, 900));
    EXPECT_EQ(window->maximumFrameSize(), QSize(1600, 1000));
    EXPECT_EQ(window->minimumFrameSize(), QSize(1220, 700));
    QWidget *view = controller->viewController()->view();
    EXPECT_EQ(view->parentWidget(), controller->mainScreenView());
    controller->showWindow();
    EXPECT_EQ(view->geometry(), QRect(0, 0, 1440, 900));
    window->setFrame({80, 50, 1300, 800});
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->size() == QSize(1300, 800); }));
}

TEST_F(MainWinControllerTest, ASmallScreenLeavesTheMinimumInForce)
{
    m_desktop.m_screen.m_visibleFrame = {0, 0, 1024, 700};
    const auto controller = make();
    EXPECT_EQ(controller->windowMain()->frame(), QRect(51, 35, 1220, 700));
    EXPECT_EQ(controller->windowMain()->maximumFrameSize(), QSize(1024, 700));
}

TEST_F(MainWinControllerTest, TheFrameCountsFromTheMainScreensOwnOrigin)
{
    m_desktop.m_screen.m_visibleFrame = {1920, 224, 1600, 1000};
    m_desktop.m_screen.m_origin = {1920, 200};
    EXPECT_EQ(make()->windowMain()->frame(), QRect(2000, 250, 1440, 900));
}

TEST_F(MainWinControllerTest, ComingBackToTheMainScreenMakesNoSecondOne)
{
    const auto controller = make();
    QWidget *view = controller->viewController()->view();
    controller->changeViewController(0);
    EXPECT_EQ(m_screensMade, 1);
    EXPECT_EQ(controller->viewController()->view(), view);
    EXPECT_EQ(view->parentWidget(), controller->mainScreenView());
    m_desktop.observe({kNotificationWindowResized});
    controller->showWindow();
    m_desktop.m_posted.clear();
    controller->windowMain()->resize(1300, 800);
    EXPECT_EQ(m_desktop.m_posted.size(), 1) << "it hears of a resize more than once";
}

TEST_F(MainWinControllerTest, TellsOfEveryResizeAndOnceOfTheEnd)
{
    const auto controller = make();
    controller->showWindow();
    QTest::qWait(2 * MainWinController::kEndOfResizeMilliseconds);
    m_desktop.observe({kNotificationWindowResized, kNotificationWindowEndResizing});
    QElapsedTimer sinceLast;
    for (int width = 1300; width < 1320; ++width) {
        controller->windowMain()->resize(width, 800);
        sinceLast.start();
        QTest::qWait(5);
    }
    EXPECT_EQ(m_desktop.m_posted.count(kNotificationWindowResized), 20);
    EXPECT_EQ(m_desktop.m_posted.count(kNotificationWindowEndResizing), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_desktop.m_posted.contains(kNotificationWindowEndResizing); }));
    EXPECT_GE(sinceLast.elapsed(), MainWinController::kEndOfResizeMilliseconds - 10);
    QTest::qWait(2 * MainWinController::kEndOfResizeMilliseconds);
    EXPECT_EQ(m_desktop.m_posted.count(kNotificationWindowEndResizing), 1);
}

TEST_F(MainWinControllerTest, FullScreenEndsAResizeOnceItsSizeIsLaidOut)
{
    const auto controller = make();
    controller->showWindow();
    QTest::qWait(2 * MainWinController::kEndOfResizeMilliseconds);
    QSize sizeAtTheEnd;
    const auto token = m_desktop.m_center.addObserver(kNotificationWindowEndResizing, [&](const QVariantMap &) {
        sizeAtTheEnd = controller->viewController()->view()->size();
    });
    m_desktop.observe({kNotificationWindowEndResizing});
    controller->windowMain()->toggleFullScreen();
    EXPECT_TRUE(m_desktop.m_posted.isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_desktop.m_posted.size() == 1; }));
    EXPECT_EQ(sizeAtTheEnd, controller->windowMain()->size());
    controller->windowMain()->toggleFullScreen();
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_desktop.m_posted.size() == 2; }));
    EXPECT_EQ(sizeAtTheEnd, QSize(1440, 900));
}
