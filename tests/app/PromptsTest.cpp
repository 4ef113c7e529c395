// The question for a rating, the window with other programs, and where things stand in this one's own windows.
#include "../support/Outline.h"
#include "../support/Timers.h"
#include "AboutDialog.h"
#include "AlertSheet.h"
#include "DotPageControl.h"
#include "Fakes.h"
#include "KeyboardDialog.h"
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
        desktop.m_workspace.m_opened.clear();
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
    letTimersFire(400);
    EXPECT_FALSE(alert()) << "it was answered";
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
    for (const auto key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Left}) // over the end
        QTest::keyClick(window.control(), key);
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

TEST(Places, OfWhatTheWindowsOfTheApplicationHold)
{
    FakeDesktop desktop;
    Localisation texts;
    PromotionWindow promotion(texts, [](const QString &) { return false; });
    promotion.promotionWindowSetup();
    AboutDialog about(texts);
    KeyboardDialog keys(texts);
    const std::tuple<QWidget *, const char *, const char *> rows[] = {
        {&promotion,
         "24: 24 Recommended@17*/ 24\n24: 24 QLabel[96x96] 24\n16: 24 GIMP@20*/ 24\n8: 24 Paints,/ 24\n"
         "8: ~ Show ~\n16: ~ DotPageControl ~\n24: 24 Don’t ~ Quit 24\n16",
         "windowPromotion: Dialog Hazelmark; QLabel: Graphic; QPushButton: Button Show in the Software Centre s; "
         "DotPageControl: PageTabList Recommended applications t^; QCheckBox: CheckBox Don’t show this again s; "
         "QPushButton: Button Quit s!"},
        {&about,
         "32: 32 QLabel[64x64] 32\n8: 32 Hazelmark@20/# 32\n8: 32 Version'/# 32\n16: 32 Blurs/# 32\n"
         "8: 32 Free@11'/# 32\n24: ~ OK ~\n16",
         "AboutDialog: Dialog About Hazelmark; QLabel: Graphic; QDialogButtonBox: Grouping; QPushButton: Button OK s!"},
        {&keys,
         "24: 24 Keys@17* 24\n16: 24 Painting* ~ Photo* 24\n4: 24 B'# 16 Brush# ~ Ctrl+O'# 16 Open# 24\n"
         "4: 24 E'# 16 Eraser# ~ Ctrl+V'# 16 Paste# 24\n4: 24 ['# 16 Brush# ~ Ctrl+S'# 16 Save# 24\n"
         "4: 24 Alt+Wheel'# 16 Brush# ~ Ctrl+Shift+S'# 16 Save# 24\n4: 24 {'# 16 Brush# ~ Ctrl+W'# 16 Close# 24\n"
         "4: 24 Ctrl+Z'# 16 Undo# ~ Ctrl+Q'# 16 Quit# 24\n",
         "keyboardDialog: Dialog Keyboard; QPushButton: Button OK s!"},
    };
    for (const auto &[window, outline, told] : rows) {
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
        const QString found = outlineOf(*window);
        EXPECT_TRUE(found.startsWith(QString::fromUtf8(outline))) << found.toStdString();
        EXPECT_EQ(toldOf(*window).toStdString(), told);
    }
    EXPECT_EQ(promotion.width(), 460);
}
