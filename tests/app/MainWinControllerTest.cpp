#include "MainWinController.h"
#include "Fakes.h"
#include "NotificationNames.h"
#include "TitlebarWindow.h"

#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

const MainWinController::ScreenFactory kFactory = [] { return std::make_unique<FakeScreenController>(); };

} // namespace

TEST(MainWinControllerTest, TakesNineTenthsOfTheMainScreenButIsNeverTooSmall)
{
    FakeDesktop desktop;
    // The visible part of the screen (the panels beside that part do not count), the frame.
    for (const auto &[visible, frame] : {std::pair{QRectF{0, 24, 1280, 800}, QRect{64, 40, 1220, 720}},
                                         {{1920, 224, 1600, 1000}, {2000, 250, 1440, 900}}}) {
        desktop.m_screen.m_visibleFrame = visible;
        const MainWinController controller(kFactory);
        EXPECT_EQ(controller.windowMain()->frame(), frame);
        EXPECT_EQ(controller.windowMain()->maximumFrameSize(), visible.size().toSize());
        EXPECT_EQ(controller.windowMain()->minimumFrameSize(), QSize(1220, 700));
    }
}

TEST(MainWinControllerTest, PutsTheMainScreenIntoTheWindowAndTellsOfResizesAndTheirEnd)
{
    FakeDesktop desktop;
    const auto isEnd = [&](int number) {
        const auto ends = [&] { return desktop.m_posted.count(kNotificationWindowEndResizing); };
        return QTest::qWaitFor([&] { return ends() >= number; }) && ends() == number;
    };
    MainWinController controller(kFactory);
    TitlebarWindow &window = *controller.windowMain();
    const QWidget *view = controller.viewController()->view();
    EXPECT_EQ(controller.viewController()->title(), QStringLiteral("MainScreenVC"));
    controller.showWindow();
    EXPECT_EQ(view->geometry(), QRect(0, 0, 1440, 900));
    desktop.observe({kNotificationWindowResized, kNotificationWindowEndResizing});
    for (int width = 1300; width < 1320; ++width)
        window.resize(width, 800);
    EXPECT_TRUE(isEnd(1)) << "of all of them";
    EXPECT_EQ(desktop.m_posted.size(), 21);
    EXPECT_EQ(view->size(), QSize(1319, 800));

    // Full screen ends a resize once its size is laid out.
    QSize sizeAtTheEnd;
    const auto end = desktop.m_center.addObserver(kNotificationWindowEndResizing,
                                                  [&](const QVariantMap &) { sizeAtTheEnd = view->size(); });
    window.toggleFullScreen();
    EXPECT_TRUE(isEnd(2));
    EXPECT_EQ(sizeAtTheEnd, window.size());
    window.toggleFullScreen();
    EXPECT_TRUE(isEnd(3));
    controller.changeViewController(0);
    EXPECT_EQ(view->parentWidget(), window.findChild<QVBoxLayout *>()->parentWidget());
}
