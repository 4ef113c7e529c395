#include "MainWinController.h"
#include "Fakes.h"
#include "NotificationNames.h"
#include "TitlebarWindow.h"

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
    /// In the window, and all that its first showing causes is over.
    std::unique_ptr<MainWinController> shown()
    {
        auto controller = make();
        controller->showWindow();
        QTest::qWait(2 * MainWinController::kEndOfResizeMilliseconds);
        m_desktop.observe({kNotificationWindowResized, kNotificationWindowEndResizing});
        return controller;
    }
    qsizetype ends() const { return m_desktop.m_posted.count(kNotificationWindowEndResizing); }

    FakeDesktop m_desktop;
    int m_screensMade = 0;
};

} // namespace

TEST_F(MainWinControllerTest, TakesNineTenthsOfTheMainScreenButIsNeverTooSmall)
{
    struct Case
    {
        QRectF visible;
        QPointF origin; ///< of the screen; the panels beside the visible part do not count
        QRect frame;
    };
    for (const Case &c : {Case{{0, 24, 1600, 1000}, {0, 0}, {80, 50, 1440, 900}},
                          {{0, 0, 1280, 800}, {0, 0}, {64, 40, 1220, 720}},
                          {{0, 24, 1024, 700}, {0, 0}, {51, 35, 1220, 700}},
                          {{1920, 224, 1600, 1000}, {1920, 200}, {2000, 250, 1440, 900}}}) {
        m_desktop.m_screen.m_visibleFrame = c.visible;
        m_desktop.m_screen.m_origin = c.origin;
        const auto controller = make();
        EXPECT_EQ(controller->windowMain()->frame(), c.frame);
        EXPECT_EQ(controller->windowMain()->maximumFrameSize(), c.visible.size().toSize());
        EXPECT_EQ(controller->windowMain()->minimumFrameSize(), QSize(1220, 700));
    }
    EXPECT_NEAR(MainWinController::frameForVisibleSize({1024, 700}).x(), 51.2, 1e-3);
}

TEST_F(MainWinControllerTest, PutsTheMainScreenIntoTheWindowOnce)
{
    m_desktop.observe({kNotificationSetupHeader});
    const auto controller = make();
    TitlebarWindow *window = controller->windowMain();
    EXPECT_EQ(controller->viewController()->title(), QStringLiteral("MainScreenVC"));
    EXPECT_EQ(controller->viewController()->representedObject(), 2);
    EXPECT_EQ(m_desktop.m_posted.size(), 1);
    EXPECT_EQ(m_desktop.m_lastUserInfo.value(kWindowObjectKey).value<QObject *>(), window);
    QWidget *view = controller->viewController()->view();
    controller->changeViewController(0);
    EXPECT_EQ(m_screensMade, 1);
    EXPECT_EQ(controller->viewController()->view(), view);
    EXPECT_EQ(view->parentWidget(), controller->mainScreenView());
    controller->showWindow();
    EXPECT_EQ(view->geometry(), QRect(0, 0, 1440, 900));
    m_desktop.observe({kNotificationWindowResized});
    window->setFrame({80, 50, 1300, 800});
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->size() == QSize(1300, 800); }));
    EXPECT_EQ(m_desktop.m_posted.size(), 1) << "it hears of a resize more than once";
}

TEST_F(MainWinControllerTest, TellsOfEveryResizeAndOnceOfTheEnd)
{
    const auto controller = shown();
    // Sizes that come one right after the other: a busy machine may take its time between turns of the event loop, and
    // then the pause of the end has really passed.
    for (int width = 1300; width < 1320; ++width) {
        controller->windowMain()->resize(width, 800);
        QCoreApplication::sendPostedEvents();
    }
    EXPECT_EQ(m_desktop.m_posted.count(kNotificationWindowResized), 20);
    EXPECT_EQ(ends(), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ends() > 0; }));
    QTest::qWait(2 * MainWinController::kEndOfResizeMilliseconds);
    EXPECT_EQ(ends(), 1);
}

TEST_F(MainWinControllerTest, FullScreenEndsAResizeOnceItsSizeIsLaidOut)
{
    const auto controller = shown();
    QSize sizeAtTheEnd;
    const auto token = m_desktop.m_center.addObserver(kNotificationWindowEndResizing, [&](const QVariantMap &) {
        sizeAtTheEnd = controller->viewController()->view()->size();
    });
    for (const int end : {1, 2}) { // into full screen, and back
        controller->windowMain()->toggleFullScreen();
        EXPECT_EQ(ends(), end - 1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return ends() == end; }));
        EXPECT_EQ(sizeAtTheEnd, end == 1 ? controller->windowMain()->size() : QSize(1440, 900));
    }
}
