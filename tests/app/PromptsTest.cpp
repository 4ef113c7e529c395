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
    bool isUp(int milliseconds = 5000)
    {
        return QTest::qWaitFor([this] { return alert() != nullptr; }, milliseconds);
    }

    FakeDesktop m_desktop;
    QWidget m_window;
    RatePrompt m_prompt{[this] { return &m_window; }, [] { return QUrl(u"appstream:x"_s); }};
    const int kLongEnough = 400; ///< milliseconds in which a prompt that is due would come
};

} // namespace

TEST_F(RatePromptTest, IsDueOnEverySeventhLaunchUntilItIsAnsweredForThisVersion)
{
    const QString count = u"appOpenedCount"_s;
    for (const int launches : {1, 2, 3, 4, 5, 6, 0}) {
        EXPECT_FALSE(launches == 0 && isUp(kLongEnough));
        m_prompt.checkForRateupPopup();
        EXPECT_EQ(m_desktop.m_defaults.integer(count), launches);
    }
    m_window.close();
    EXPECT_FALSE(isUp(kLongEnough)) << "on a window that is closed";
    m_window.show();
    ASSERT_TRUE(isUp());
    EXPECT_EQ(alert()->messageText() + u'|' + alert()->informativeText(),
              u"Rate Us|If you enjoy using our app, would you like to rate us on app store?"_s);
    m_prompt.showAlertForRateApp();
    EXPECT_EQ(SheetQueue::forWindow(m_window).waiting(), 0) << "two prompts stand on each other";

    const QString version = Bundle::infoDictionary().value(u"CFBundleVersion"_s).toString();
    // The button (none: Esc), whether the store opens, whether the question is answered.
    for (const auto &[button, storeOpens, isAnswered] :
         {std::tuple{"", true, false}, {"YES", false, false}, {"YES", true, true}, {"NO", true, true}}) {
        m_desktop.m_workspace = {};
        m_desktop.m_workspace.m_succeeds = storeOpens;
        m_desktop.m_defaults.setString(u"appVersion"_s, u"0.1"_s);
        m_prompt.showAlertForRateApp();
        ASSERT_TRUE(alert());
        for (QPushButton *one : {alert()->defaultButton(), alert()->alternateButton()}) {
            if (one->text() == QLatin1String(button))
                one->click();
        }
        if (!*button)
            QTest::keyClick(alert(), Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !alert(); }));
        EXPECT_EQ(m_desktop.m_workspace.m_opened.size(), QLatin1String(button) == "YES"_L1);
        EXPECT_EQ(m_desktop.m_defaults.string(u"appVersion"_s) == version, isAnswered);
        m_desktop.m_defaults.setInteger(count, 6);
        m_prompt.checkForRateupPopup();
        EXPECT_EQ(m_desktop.m_defaults.integer(count), 0);
        EXPECT_EQ(isAnswered ? isUp(kLongEnough) : isUp(), !isAnswered);
    }
}

TEST(PromotionWindowTest, TurnsRoundWhatIsNotInstalledUntilADotIsChosen)
{
    FakeDesktop desktop;
    QStringList installed;
    Localisation texts;
    PromotionWindow window(texts, [&](const QString &name) { return installed.contains(name); });
    const auto entry = [&](int index, const QString &key) {
        return window.arrOurApps().at(index).toMap().value(key).toString();
    };
    const auto shows = [&](int index) {
        QStringList shown;
        for (const QLabel *label : window.findChildren<QLabel *>())
            shown << label->text();
        return shown.contains(texts.getLocalizedStringForKey(u"RECOMMENDED_APPS"_s)) &&
               window.selectedRecommendedAppIndex() == index && window.control()->currentPage() == index &&
               shown.contains(entry(index, u"appName"_s)) && shown.contains(entry(index, u"Desc"_s));
    };
    window.present();
    ASSERT_EQ(window.arrOurApps().size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(entry(i, u"appName"_s).isEmpty() || entry(i, u"Desc"_s) == u"(null)"_s);
        EXPECT_TRUE(entry(i, u"url"_s).startsWith(u"appstream:"_s));
        EXPECT_FALSE(Bundle::mainBundle().pathForResource(u"icons/"_s + entry(i, u"imageName"_s), u"svg"_s).isEmpty());
    }
    for (const int index : {0, 1, 2, 0, 1}) {
        EXPECT_TRUE(window.isRotating() && shows(index));
        window.changeAppDetail();
    }
    testing::internal::CaptureStderr();
    QTest::keyClick(window.control(), Qt::Key_Left);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Selected page at index: 1"), std::string::npos);
    EXPECT_TRUE(shows(1) && !window.isRotating());
    QTest::mouseClick(window.btnOpenSuggestedApp(), Qt::LeftButton);
    EXPECT_EQ(desktop.m_workspace.m_opened, QStringList(entry(1, u"url"_s)));
    window.present();
    EXPECT_TRUE(window.isRotating() && shows(0));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible() || window.isRotating());

    const QStringList all{entry(0, u"appName"_s), entry(1, u"appName"_s), entry(2, u"appName"_s)};
    installed = {all[1]};
    window.promotionWindowSetup();
    EXPECT_EQ(entry(0, u"appName"_s) + entry(1, u"appName"_s), all[0] + all[2]);
    EXPECT_EQ(window.control()->numberOfPages(), 2);
    installed = all;
    window.present();
    window.changeAppDetail(); // nothing to turn to
    window.btnOpenSuggestedAppTapped();
    EXPECT_EQ(desktop.m_workspace.m_opened.size() + window.arrOurApps().size(), 1);
}
