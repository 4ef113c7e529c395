#include "TipsWindow.h"

#include "../support/ScreenApplication.h"
#include "DotPageControl.h"
#include "PageSlider.h"
#include "ProcessWide.h"
#include "ScaleToFillImageView.h"
#include "UserDefaults.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
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
