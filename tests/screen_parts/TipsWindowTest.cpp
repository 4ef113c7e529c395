#include "TipsWindow.h"

#include "../support/ScreenApplication.h"
#include "DotPageControl.h"
#include "PageSlider.h"
#include "ProcessWide.h"
#include "ScaleToFillImageView.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

class TipsWindowTest : public testing::Test
{
protected:
    TipsWindowTest()
    {
        m_mainWindow.setGeometry(300, 200, 1220, 700);
        m_mainWindow.show();
        m_tips.addDemoWindow(m_mainWindow.size());
    }

    QTemporaryDir m_folder;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    ProcessWide<UserDefaults>::Replacement m_replacement{m_defaults};
    ScreenApplication m_application;
    QWidget m_mainWindow;
    TipsWindow m_tips{m_application, &m_mainWindow};
};

} // namespace

TEST_F(TipsWindowTest, TurnsPagesOfPicturesAndWords)
{
    PageSlider *pages = m_tips.pageController();
    ASSERT_EQ(pages->count(), 4);
    const auto box = [&](int page) { return m_tips.findChild<QWidget *>(QStringLiteral("tipsBox%1").arg(page)); };
    for (int page = 0; page < 4; ++page)
        EXPECT_FALSE(box(page)->findChild<ScaleToFillImageView *>()->image().isNull()) << page;
    QTest::mouseClick(m_tips.btnNextpage(), Qt::LeftButton);
    QTest::mouseClick(m_tips.btnNextpage(), Qt::LeftButton); // while the page before still slides
    EXPECT_EQ(pages->selectedIndex(), 2);
    EXPECT_EQ(m_tips.pageButtons()->currentPage(), 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return box(2)->geometry() == pages->rect() && !box(1)->isVisible(); }));
    QTest::mouseClick(m_tips.btnBackPage(), Qt::LeftButton);
    EXPECT_EQ(pages->selectedIndex(), 1);
    m_tips.btnNextpageTapped();
    m_tips.btnNextpageTapped();
    EXPECT_EQ(m_tips.btnNextpage()->text(), QStringLiteral("TIP_DONE %@"));
    EXPECT_TRUE(m_tips.btnCheckShowTipsAgain()->isChecked());
    for (const bool isOff : {false, true, true}) { // only ever switched off
        EXPECT_EQ(m_defaults.boolean(QStringLiteral("notShowTipsWindow")), isOff);
        m_tips.btnCheckShowTipsAgain()->click();
    }
    m_tips.btnNextpageTapped();
    EXPECT_FALSE(m_tips.isVisible());
}

TEST_F(TipsWindowTest, StaysWithTheMainWindowAndOnTheScreen)
{
    m_tips.close();
    m_tips.addDemoWindow({600, 700});
    const QPoint place = m_tips.pos();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_tips));
    const QRect screen = m_tips.screen()->availableGeometry();
    // Where the main window goes, and where the tips are then, give or take a frame.
    const std::pair<QPoint, QPoint> rows[] = {
        {{310, 220}, m_tips.pos() + QPoint(10, 20)},
        {{-3000, -3000}, screen.topLeft()},
        {{3000, 3000}, screen.bottomRight() - QPoint(m_tips.frameGeometry().width(), m_tips.frameGeometry().height())}};
    for (const auto &[to, tips] : rows) {
        m_mainWindow.move(to);
        EXPECT_TRUE(QTest::qWaitFor([&] { return (m_tips.pos() - tips).manhattanLength() < 5; })) << to.x();
    }
    QTest::mouseClick(m_tips.pageButtons(), Qt::LeftButton, {}, QPoint(40, 11));
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 2);
    m_tips.addDemoWindow({0, 0}); // as it is on show it only comes to the front
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 2);
    for (const auto key : {Qt::Key_Left, Qt::Key_Left, Qt::Key_Right})
        QTest::keyClick(&m_tips, key);
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 1);
    QTest::keyClick(&m_tips, Qt::Key_Escape);
    EXPECT_FALSE(m_tips.isVisible());
    m_tips.addDemoWindow({600, 700});
    EXPECT_EQ(m_tips.pos(), place);
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 0);
    EXPECT_EQ(m_tips.focusWidget(), m_tips.btnNextpage());
    m_mainWindow.hide();
    EXPECT_FALSE(m_tips.isVisible());
}
