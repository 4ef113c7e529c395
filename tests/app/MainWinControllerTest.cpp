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
    qsizetype ends() const { return m_desktop.m_posted.count(kNotificationWindowEndResizing); }
    bool isEnd(int number)
    {
        return QTest::qWaitFor([=, this] { return ends() >= number; }) && ends() == number;
    }

    FakeDesktop m_desktop;
    int m_screensMade = 0;
    const MainWinController::ScreenFactory m_factory = [this] {
        ++m_screensMade;
        auto controller = std::make_unique<FakeScreenController>();
        new QWidget(controller->m_view);
        return controller;
    };
};

} // namespace

TEST_F(MainWinControllerTest, TakesNineTenthsOfTheMainScreenButIsNeverTooSmall)
{
    // The visible part of the screen, its origin (the panels beside that part do not count), the frame.
    for (const auto &[visible, origin, frame] :
         {std::tuple{QRectF{0, 24, 1600, 1000}, QPointF{0, 0}, QRect{80, 50, 1440, 900}},
          {{0, 0, 1280, 800}, {0, 0}, {64, 40, 1220, 720}},
          {{0, 24, 1024, 700}, {0, 0}, {51, 35, 1220, 700}},
          {{1920, 224, 1600, 1000}, {1920, 200}, {2000, 250, 1440, 900}}}) {
        m_desktop.m_screen.m_visibleFrame = visible;
        m_desktop.m_screen.m_origin = origin;
        const MainWinController controller(m_factory);
        EXPECT_EQ(controller.windowMain()->frame(), frame);
        EXPECT_EQ(controller.windowMain()->maximumFrameSize(), visible.size().toSize());
        EXPECT_EQ(controller.windowMain()->minimumFrameSize(), QSize(1220, 700));
    }
    EXPECT_NEAR(MainWinController::frameForVisibleSize({1024, 700}).x(), 51.2, 1e-3);
}

TEST_F(MainWinControllerTest, PutsTheMainScreenIntoTheWindowOnceAndTellsOfResizesAndTheirEnd)
{
    QVariant announced;
    const auto token = m_desktop.m_center.addObserver(
        kNotificationSetupHeader, [&](const QVariantMap &info) { announced = info.value(kWindowObjectKey); });
    MainWinController controller(m_factory);
    TitlebarWindow &window = *controller.windowMain();
    EXPECT_EQ(announced.value<QObject *>(), &window);
    EXPECT_EQ(controller.viewController()->title(), QStringLiteral("MainScreenVC"));
    EXPECT_EQ(controller.viewController()->representedObject(), 1);
    const QWidget *view = controller.viewController()->view();
    controller.changeViewController(0);
    EXPECT_EQ(m_screensMade, 1);
    EXPECT_EQ(controller.viewController()->view(), view);
    EXPECT_EQ(view->parentWidget(), controller.mainScreenView());
    m_desktop.observe({kNotificationWindowEndResizing});
    controller.showWindow();
    EXPECT_EQ(view->geometry(), QRect(0, 0, 1440, 900));
    window.resize(1200, 800);
    EXPECT_TRUE(isEnd(1));

    m_desktop.observe({kNotificationWindowResized, kNotificationWindowEndResizing});
    for (int width = 1300; width < 1320; ++width)
        window.resize(width, 800);
    EXPECT_TRUE(isEnd(1)) << "of all of them";
    EXPECT_EQ(m_desktop.m_posted.size(), 21);
    EXPECT_EQ(view->size(), QSize(1319, 800));

    // Full screen ends a resize once its size is laid out.
    QSize sizeAtTheEnd;
    const auto end = m_desktop.m_center.addObserver(kNotificationWindowEndResizing,
                                                    [&](const QVariantMap &) { sizeAtTheEnd = view->size(); });
    for (const int number : {2, 3}) { // into full screen, and back
        window.toggleFullScreen();
        EXPECT_TRUE(isEnd(number));
        EXPECT_EQ(sizeAtTheEnd, number == 2 ? window.size() : QSize(1319, 800));
    }
}
