// The question for a rating, and the window with other programs.
#include "AlertSheet.h"
#include "DotPageControl.h"
#include "Fakes.h"
#include "Localisation.h"
#include "PromotionWindow.h"
#include "RatePrompt.h"
#include "SheetQueue.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;
using namespace Qt::StringLiterals;

namespace {

class RatePromptTest : public testing::Test
{
protected:
    RatePromptTest() { m_window.show(); }

    AlertSheet *alert() { return qobject_cast<AlertSheet *>(SheetQueue::forWindow(m_window).current()); }
    /// Long enough for a prompt that is due to be up.
    bool isUp()
    {
        return QTest::qWaitFor([this] { return alert() != nullptr; }, 400);
    }
    int count() const { return m_desktop.m_defaults.integer(u"appOpenedCount"_s); }

    FakeDesktop m_desktop;
    QWidget m_window;
    RatePrompt m_prompt{[this] { return &m_window; }, [] { return QUrl(u"appstream:x"_s); }};
};

class PromotionWindowTest : public testing::Test
{
protected:
    QString entry(int index, const QString &key) const
    {
        return m_window.arrOurApps().at(index).toMap().value(key).toString();
    }
    bool shows(const QString &text) const
    {
        const auto labels = m_window.findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) { return label->text() == text; });
    }

    FakeDesktop m_desktop;
    QStringList m_installed;
    Localisation m_texts;
    PromotionWindow m_window{m_texts, [this](const QString &name) { return m_installed.contains(name); }};
};

} // namespace

TEST_F(RatePromptTest, IsDueOnEverySeventhLaunch)
{
    for (int launch = 1; launch <= 6; ++launch) {
        m_prompt.checkForRateupPopup();
        EXPECT_EQ(count(), launch);
    }
    EXPECT_FALSE(isUp());
    m_prompt.checkForRateupPopup();
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(alert(), nullptr) << "not before its delay";
    m_window.close();
    EXPECT_FALSE(isUp()) << "on a window that is closed";
    m_window.show();
    ASSERT_TRUE(isUp());
    EXPECT_EQ(alert()->messageText() + u'|' + alert()->informativeText(),
              u"Rate Us|If you enjoy using our app, would you like to rate us on app store?"_s);
    m_prompt.showAlertForRateApp();
    EXPECT_EQ(SheetQueue::forWindow(m_window).waiting(), 0) << "two prompts stand on each other";
}

TEST_F(RatePromptTest, AnAnswerHoldsForThisVersion)
{
    struct Case
    {
        const char *button; ///< null: Esc
        bool storeOpens;
        size_t opened;
        bool isAnswered;
    };
    const QString version = Bundle::infoDictionary().value(u"CFBundleVersion"_s).toString();
    for (const Case &c :
         {Case{"NO", true, 0, true}, {"YES", false, 1, false}, {"YES", true, 1, true}, {nullptr, true, 0, false}}) {
        m_desktop.m_workspace.m_succeeds = c.storeOpens;
        m_desktop.m_workspace.m_opened.clear();
        m_desktop.m_defaults.setString(u"appVersion"_s, u"0.1"_s);
        m_prompt.showAlertForRateApp();
        ASSERT_TRUE(alert());
        for (QPushButton *button : {alert()->defaultButton(), alert()->alternateButton()}) {
            if (c.button && button->text() == QLatin1String(c.button))
                button->click();
        }
        if (!c.button)
            QTest::keyClick(alert(), Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !alert(); }));
        EXPECT_EQ(m_desktop.m_workspace.m_opened.size(), c.opened);
        EXPECT_EQ(m_desktop.m_defaults.string(u"appVersion"_s) == version, c.isAnswered);
        // Due again, unless it was answered for this version.
        m_desktop.m_defaults.setInteger(u"appOpenedCount"_s, 6);
        m_prompt.checkForRateupPopup();
        EXPECT_EQ(count(), 0);
        EXPECT_EQ(isUp(), !c.isAnswered);
        if (alert())
            alert()->reject();
        EXPECT_TRUE(QTest::qWaitFor([this] { return !alert(); }));
    }
}

TEST_F(PromotionWindowTest, LeavesOutWhatIsInstalled)
{
    m_window.promotionWindowSetup();
    ASSERT_EQ(m_window.arrOurApps().size(), 3);
    const QStringList all{entry(0, u"appName"_s), entry(1, u"appName"_s), entry(2, u"appName"_s)};
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(all[i].isEmpty() || entry(i, u"Desc"_s).isEmpty() || entry(i, u"Desc"_s) == u"(null)"_s);
        EXPECT_TRUE(entry(i, u"url"_s).startsWith(u"appstream:"_s) && QUrl(entry(i, u"url"_s)).host().isEmpty());
        EXPECT_FALSE(Bundle::mainBundle().pathForResource(u"icons/"_s + entry(i, u"imageName"_s), u"svg"_s).isEmpty());
        EXPECT_FALSE(PromotionWindow::isApplicationInstalledWithName(all[i]));
    }
    m_installed = {all[1]};
    m_window.promotionWindowSetup();
    ASSERT_EQ(m_window.arrOurApps().size(), 2);
    EXPECT_EQ(entry(0, u"appName"_s) + entry(1, u"appName"_s), all[0] + all[2]);
    EXPECT_EQ(m_window.control()->numberOfPages(), 2);
    m_installed = all;
    m_window.present();
    m_window.changeAppDetail(); // nothing to turn to
    m_window.btnOpenSuggestedAppTapped();
    EXPECT_TRUE(m_desktop.m_workspace.m_opened.empty() && m_window.arrOurApps().isEmpty());
}

TEST_F(PromotionWindowTest, TurnsRoundUntilADotIsChosen)
{
    m_window.present();
    EXPECT_TRUE(m_window.isRotating());
    for (const int index : {0, 1, 2, 0, 1}) {
        EXPECT_EQ(m_window.selectedRecommendedAppIndex(), index);
        EXPECT_EQ(m_window.control()->currentPage(), index);
        EXPECT_TRUE(shows(entry(index, u"appName"_s)) && shows(entry(index, u"Desc"_s)));
        m_window.changeAppDetail();
    }
    m_window.changeAppDetail();
    m_window.changeAppDetail();
    testing::internal::CaptureStderr();
    QTest::keyClick(m_window.control(), Qt::Key_Right);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Selected page at index: 2"), std::string::npos);
    EXPECT_TRUE(shows(entry(2, u"appName"_s)));
    EXPECT_FALSE(m_window.isRotating());
    QTest::mouseClick(m_window.btnOpenSuggestedApp(), Qt::LeftButton);
    ASSERT_EQ(m_desktop.m_workspace.m_opened.size(), 1U);
    EXPECT_EQ(m_desktop.m_workspace.m_opened[0].toString(), entry(2, u"url"_s));
    m_window.present();
    EXPECT_TRUE(m_window.isRotating());
    EXPECT_EQ(m_window.selectedRecommendedAppIndex(), 0);
    QTest::keyClick(&m_window, Qt::Key_Escape);
    EXPECT_FALSE(m_window.isVisible() || m_window.isRotating());
}
