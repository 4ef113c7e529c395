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

TEST(RatePromptTest, IsDueOnEverySeventhLaunchUntilItIsAnsweredForThisVersion)
{
    FakeDesktop desktop;
    QWidget window;
    window.show();
    RatePrompt prompt([&] { return &window; }, [] { return QUrl(u"appstream:x"_s); });
    const SheetQueue &sheets = SheetQueue::forWindow(window);
    const auto alert = [&] { return qobject_cast<AlertSheet *>(sheets.current()); };
    const QString count = u"appOpenedCount"_s;
    for (const int launches : {1, 2, 3, 4, 5, 6, 0}) {
        prompt.checkForRateupPopup();
        EXPECT_EQ(desktop.m_defaults.integer(count), launches);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return alert() != nullptr; }));
    prompt.showAlertForRateApp();
    EXPECT_EQ(sheets.waiting(), 0) << "two prompts stand on each other";
    const QString version = Bundle::infoDictionary().value(u"CFBundleVersion"_s).toString();
    // The answer (none: Esc), whether the store opens, whether the question is answered.
    for (const auto &[answer, storeOpens, isAnswered] :
         {std::tuple{"", true, false}, {"YES", false, false}, {"YES", true, true}, {"NO", true, true}}) {
        desktop.m_workspace = {};
        desktop.m_workspace.m_succeeds = storeOpens;
        desktop.m_defaults.setString(u"appVersion"_s, u"0.1"_s);
        prompt.showAlertForRateApp();
        if (*answer)
            (*answer == 'Y' ? alert()->defaultButton() : alert()->alternateButton())->click();
        else
            QTest::keyClick(alert(), Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !alert(); }));
        EXPECT_EQ(desktop.m_workspace.m_opened.size(), *answer == 'Y');
        EXPECT_EQ(desktop.m_defaults.string(u"appVersion"_s) == version, isAnswered);
    }
    desktop.m_defaults.setInteger(count, 6);
    prompt.checkForRateupPopup();
    EXPECT_EQ(desktop.m_defaults.integer(count), 0);
    EXPECT_FALSE(QTest::qWaitFor([&] { return alert() != nullptr; }, 400)) << "it was answered";
}

TEST(PromotionWindowTest, TurnsRoundWhatIsNotInstalledUntilADotIsChosen)
{
    FakeDesktop desktop;
    QStringList installed;
    Localisation texts;
    PromotionWindow window(texts, [&](const QString &name) { return installed.contains(name); });
    const auto entry = [&](int index, const QString &key) {
        return window.arrOurApps().value(index).toMap().value(key).toString();
    };
    const auto shows = [&](int index) {
        const auto labels = window.findChildren<QLabel *>();
        return window.control()->currentPage() == index && std::ranges::any_of(labels, [&](const QLabel *label) {
                   return label->text() == entry(index, u"Desc"_s);
               });
    };
    window.present();
    for (const int index : {0, 1, 2, 0, 1}) {
        EXPECT_TRUE(window.isRotating() && shows(index));
        EXPECT_FALSE(entry(index, u"appName"_s).isEmpty() || entry(index, u"Desc"_s) == u"(null)"_s);
        window.changeAppDetail();
    }
    QTest::keyClick(window.control(), Qt::Key_Left);
    EXPECT_TRUE(shows(1) && !window.isRotating());
    QTest::mouseClick(window.btnOpenSuggestedApp(), Qt::LeftButton);
    EXPECT_EQ(desktop.m_workspace.m_opened, QStringList(entry(1, u"url"_s)));

    installed = {entry(0, u"appName"_s), entry(1, u"appName"_s)};
    window.present();
    EXPECT_TRUE(window.isRotating() && shows(0) && window.control()->numberOfPages() == 1);
    EXPECT_FALSE(installed.contains(entry(0, u"appName"_s)));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible() || window.isRotating());
}
