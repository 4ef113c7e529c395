#include "TipsWindow.h"

#include "../support/ScreenApplication.h"
#include "DotPageControl.h"
#include "PageSlider.h"
#include "ProcessWide.h"
#include "ScaleToFillImageView.h"
#include "Screen.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
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

    struct ScreenToTheRight : Screen
    {
        QPointF origin() const override { return {70, 5}; }
    };

    QTemporaryDir m_folder;
    ScreenToTheRight m_screen;
    ProcessWide<Screen>::Replacement m_replaceScreen{m_screen};
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    ProcessWide<UserDefaults>::Replacement m_replacement{m_defaults};
    ScreenApplication m_application;
    QWidget m_mainWindow;
    TipsWindow m_tips{m_application, &m_mainWindow};
};

} // namespace

TEST_F(TipsWindowTest, StandsWhereTheMainWindowsSizeSaysOpensOnceAndGoesWithIt)
{
    EXPECT_TRUE(m_tips.isVisible() && !m_tips.isModal());
    EXPECT_EQ(m_tips.x(), 70 + qRound((1220 - m_tips.width()) * 0.5)) << "the main window's place does not count";
    EXPECT_EQ(m_tips.y(), 5 + qRound((700 - m_tips.height()) * 0.5));
    EXPECT_EQ(m_tips.parentWidget(), &m_mainWindow);
    m_tips.move(150, 160);
    m_tips.btnNextpageTapped();
    m_tips.addDemoWindow(m_mainWindow.size());
    EXPECT_EQ(m_tips.pos(), QPoint(150, 160)) << "the one that is open comes to the front as it is";
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 1);
    m_mainWindow.setGeometry(220, 150, 1220, 700);
    EXPECT_EQ(m_tips.pos(), QPoint(70, 110));
    m_mainWindow.move(-2000, -2000);
    EXPECT_EQ(m_tips.pos(), QPoint(0, 0)) << "but never off the screen";
    m_mainWindow.move(5000, 5000);
    EXPECT_LE(m_tips.frameGeometry().right(), m_tips.screen()->availableGeometry().right());
    QTest::keyClick(&m_tips, Qt::Key_Escape);
    EXPECT_FALSE(m_tips.isVisible());
    m_tips.addDemoWindow(m_mainWindow.size());
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 0);
    m_mainWindow.close();
    EXPECT_FALSE(m_tips.isVisible());
}

TEST_F(TipsWindowTest, TurnsPagesOfPicturesAndWords)
{
    PageSlider *pages = m_tips.pageController();
    ASSERT_EQ(pages->count(), 4);
    const auto box = [&](int page) { return m_tips.findChild<QWidget *>(QStringLiteral("tipsBox%1").arg(page)); };
    for (int page = 0; page < 4; ++page) {
        EXPECT_FALSE(box(page)->findChild<ScaleToFillImageView *>()->image().isNull()) << page;
        for (const QLabel *label : box(page)->findChildren<QLabel *>())
            EXPECT_FALSE(label->text().isEmpty()) << page;
    }
    EXPECT_FALSE(m_tips.btnBackPage()->isEnabled());
    QTest::mouseClick(m_tips.btnNextpage(), Qt::LeftButton);
    QTest::mouseClick(m_tips.btnNextpage(), Qt::LeftButton); // while the page before still slides
    EXPECT_EQ(pages->selectedIndex(), 2);
    EXPECT_EQ(m_tips.pageButtons()->currentPage(), 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return box(2)->geometry() == pages->rect() && !box(1)->isVisible(); }));
    m_tips.pageButtonsAction(3);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_tips));
    m_tips.btnBackPage()->setFocus(); // it would hand the focus on
    QTest::keyClick(m_tips.btnBackPage(), Qt::Key_Left);
    EXPECT_EQ(pages->selectedIndex(), 2);
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
