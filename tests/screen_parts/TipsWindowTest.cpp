#include "TipsWindow.h"

#include "DotPageControl.h"
#include "FakeApplication.h"
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
    }

    class ScreenToTheRight : public Screen
    {
    public:
        QPointF origin() const override { return {70, 5}; }
    };

    QTemporaryDir m_folder;
    ScreenToTheRight m_screen;
    ProcessWide<Screen>::Replacement m_replaceScreen{m_screen};
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    ProcessWide<UserDefaults>::Replacement m_replacement{m_defaults};
    FakeApplication m_application;
    QWidget m_mainWindow;
    TipsWindow m_tips{m_application, &m_mainWindow};
};

} // namespace

TEST_F(TipsWindowTest, StandsWhereTheMainWindowsSizeSaysAndOpensOnce)
{
    m_tips.addDemoWindow(m_mainWindow.size());
    ASSERT_TRUE(m_tips.isVisible());
    EXPECT_EQ(m_tips.x(), 70 + qRound((1220 - m_tips.width()) * 0.5)) << "the main window's place does not count";
    EXPECT_EQ(m_tips.y(), 5 + qRound((700 - m_tips.height()) * 0.5));
    EXPECT_EQ(m_tips.parentWidget(), &m_mainWindow);
    EXPECT_FALSE(m_tips.isModal());
    m_tips.move(11, 12);
    m_tips.btnNextpageTapped();
    m_tips.addDemoWindow(m_mainWindow.size());
    EXPECT_EQ(m_tips.pos(), QPoint(11, 12)) << "the one that is open comes to the front as it is";
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 1);
    QTest::keyClick(&m_tips, Qt::Key_Escape);
    EXPECT_FALSE(m_tips.isVisible());
    m_tips.addDemoWindow(m_mainWindow.size());
    EXPECT_TRUE(m_tips.isVisible());
    EXPECT_EQ(m_tips.pageController()->selectedIndex(), 0);
}

TEST_F(TipsWindowTest, GoesWithTheMainWindow)
{
    m_tips.addDemoWindow(m_mainWindow.size());
    m_tips.move(150, 160);
    m_mainWindow.setGeometry(220, 150, 1220, 700);
    EXPECT_EQ(m_tips.pos(), QPoint(70, 110));
    m_mainWindow.move(-2000, -2000);
    EXPECT_EQ(m_tips.pos(), QPoint(0, 0)) << "but never off the screen";
    m_mainWindow.move(5000, 5000);
    EXPECT_LE(m_tips.frameGeometry().right(), m_tips.screen()->availableGeometry().right());
    m_mainWindow.close();
    EXPECT_FALSE(m_tips.isVisible());
}

TEST_F(TipsWindowTest, TurnsItsPages)
{
    m_tips.addDemoWindow(m_mainWindow.size());
    PageSlider *pages = m_tips.pageController();
    ASSERT_EQ(pages->count(), 4);
    EXPECT_FALSE(m_tips.btnBackPage()->isEnabled());
    QTest::mouseClick(m_tips.btnNextpage(), Qt::LeftButton);
    QTest::mouseClick(m_tips.btnNextpage(), Qt::LeftButton); // while the page before still slides
    EXPECT_EQ(pages->selectedIndex(), 2);
    EXPECT_EQ(m_tips.pageButtons()->currentPage(), 2);
    QWidget *third = m_tips.findChild<QWidget *>(QStringLiteral("tipsBox2"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return third->geometry() == pages->rect(); }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_tips.findChild<QWidget *>(QStringLiteral("tipsBox1"))->isVisible(); }));
    m_tips.pageButtonsAction(3);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&m_tips));
    m_tips.btnBackPage()->setFocus(); // it would hand the focus on
    QTest::keyClick(m_tips.btnBackPage(), Qt::Key_Left);
    EXPECT_EQ(pages->selectedIndex(), 2);
    m_tips.btnNextpageTapped();
    EXPECT_EQ(m_tips.btnNextpage()->text(), m_application.getLocalizedStringForKey(QStringLiteral("TIP_DONE")));
    m_tips.btnNextpageTapped();
    EXPECT_FALSE(m_tips.isVisible());
}

TEST_F(TipsWindowTest, EveryPageHasAPictureAndWords)
{
    m_tips.addDemoWindow(m_mainWindow.size());
    for (int page = 0; page < 4; ++page) {
        const auto *box = m_tips.findChild<QWidget *>(QStringLiteral("tipsBox%1").arg(page));
        EXPECT_FALSE(box->findChild<ScaleToFillImageView *>()->image().isNull()) << page;
        for (const QLabel *label : box->findChildren<QLabel *>())
            EXPECT_FALSE(label->text().isEmpty()) << page;
    }
}

TEST_F(TipsWindowTest, TheCheckBoxOnlyEverSwitchesTipsOff)
{
    m_tips.addDemoWindow(m_mainWindow.size());
    QCheckBox *box = m_tips.btnCheckShowTipsAgain();
    EXPECT_TRUE(box->isChecked());
    EXPECT_FALSE(m_defaults.boolean(QStringLiteral("notShowTipsWindow")));
    box->click();
    EXPECT_TRUE(m_defaults.boolean(QStringLiteral("notShowTipsWindow")));
    box->click();
    EXPECT_TRUE(m_defaults.boolean(QStringLiteral("notShowTipsWindow")));
}
