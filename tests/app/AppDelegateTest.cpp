// The application from its launch to its end: menus, notifications, and what the closing of a window means.
#include "AppDelegate.h"
#include "AboutDialog.h"
#include "Fakes.h"
#include "IMGButton.h"
#include "MainMenu.h"
#include "NotificationNames.h"
#include "PhotoFile.h"
#include "PromotionWindow.h"
#include "SheetQueue.h"
#include "TitlebarWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

using namespace hazelmark;
using namespace Qt::StringLiterals;

namespace {

class AppDelegateTest : public testing::Test
{
protected:
    ~AppDelegateTest() override { QGuiApplication::setQuitOnLastWindowClosed(true); }

    void launch()
    {
        m_delegate.setTerminate([this] { ++m_terminated; });
        m_delegate.applicationDidFinishLaunching();
    }
    MainMenu &menu() { return *m_delegate.mainMenu(); }
    TitlebarWindow &window() { return *m_delegate.myWindowController()->windowMain(); }
    static QString titles(const QMenu &menu)
    {
        QStringList titles(menu.title());
        for (const QAction *action : menu.actions())
            titles << (action->isEnabled() ? action->text() : u'(' + action->text() + u')');
        return titles.join(u'|');
    }

    FakeDesktop m_desktop;
    QString m_atTheScreen; ///< what the main screen finds when it is made
    int m_terminated = 0;
    AppDelegate m_delegate{[this](ApplicationDelegate &delegate) {
        m_atTheScreen = delegate.getLocalizedStringForKey(u"SAVE"_s) + (delegate.isAppActive() ? u", active"_s : u""_s);
        return std::make_unique<FakeScreenController>();
    }};
};

} // namespace

TEST_F(AppDelegateTest, LaunchesActiveWithTheMainScreenAndItsTexts)
{
    m_desktop.observe({kNotificationSetupHeader});
    EXPECT_FALSE(m_delegate.isAppActive());
    launch();
    EXPECT_EQ(m_atTheScreen, u"Save, active"_s);
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(m_desktop.m_posted.size(), 1);
    EXPECT_EQ(m_delegate.arrOurApps().size(), 3);
    EXPECT_FALSE(m_delegate.windowPromotion()->isVisible());
    EXPECT_EQ(m_desktop.m_defaults.integer(u"appOpenedCount"_s), 1);
    EXPECT_EQ(window().closeButton()->toolTip(), m_delegate.getLocalizedStringForKey(u"CLOSE_WINDOW"_s));
    const TitlebarWindow *first = &window();
    m_delegate.openMainWindow();
    EXPECT_EQ(&window(), first) << "the window is made once";
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
    window().closeNow();
}

TEST_F(AppDelegateTest, TitlesItsMenusInTheSystemsLanguage)
{
    m_desktop.m_session.m_languages = {u"de-DE"_s};
    launch();
    const auto all = [this] {
        return titles(*menu().menuFile) + u'\n' + titles(*menu().menuLanguage) + u'\n' + titles(*menu().menuHelp);
    };
    const QString german =
        u"Datei|Öffnen …|Schließen||(Speichern)|(Speichern unter …)||Beenden Hazelmark\n"
        "Sprache|(Die Texte folgen der Sprache des Systems)||English|Français|Deutsch|中文|日本語\n"
        "Hilfe|Tipps zeigen|Hazelmark Hilfe|Hazelmark in der Softwareverwaltung||(Empfohlene Programme :-)|GIMP|darktable|digiKam||Über Hazelmark"_s;
    EXPECT_EQ(all(), german);
    EXPECT_TRUE(QTest::qWaitFor([this] { return menu().menuBar()->width() > 100; })) << "room for its titles";
    EXPECT_EQ(menu().menuBar()->window(), &window());
    m_desktop.observe({kNotificationUpdateLanguage});
    menu().menuLanguage->actions().last()->trigger();
    EXPECT_EQ(m_desktop.m_posted, QStringList(kNotificationUpdateLanguage));
    EXPECT_EQ(m_delegate.localisation().languageSettingsDict()->value(u"SAVE"_s).toString(), u"保存"_s);
    EXPECT_EQ(m_delegate.getLocalizedStringForKey(u"FILE"_s), u"Datei"_s);
    EXPECT_EQ(all(), german);
}

TEST_F(AppDelegateTest, MenuItemsPostTheirNotificationsWhileTheyMakeSense)
{
    launch();
    const std::pair<QAction *, QString> items[] = {{menu().btnOpenOnMenu, kNotificationOpenPhotoFromMenuTapped},
                                                   {menu().btnDeleteOnMenu, kNotificationClosePhotoFromMenuTapped},
                                                   {menu().btnSaveOnMenu, kNotificationSavePhotoFromMenuTapped},
                                                   {menu().btnSaveAsOnMenu, kNotificationSavePhotoFromMenuTapped},
                                                   {menu().btnTips, kNotificationShowTipsFromMenuTapped}};
    struct State
    {
        bool hasPhoto, isUiDisabled;
        const char *posting; ///< of the items
    };
    // With a photo open it is an export that disables.
    for (const State &state : {State{false, true, "11001"}, {true, false, "11111"}, {true, true, "01001"}}) {
        m_delegate.setSelectedImageFile(state.hasPhoto ? std::make_shared<PhotoFile>(u"/photo.jpg"_s) : nullptr);
        m_delegate.setIsUiDisabled(state.isUiDisabled);
        std::string posting;
        for (const auto &[item, notification] : items) {
            m_desktop.observe({notification});
            item->trigger();
            posting += m_desktop.m_posted == QStringList(notification) ? '1' : '0';
        }
        EXPECT_EQ(posting, state.posting);
    }
    EXPECT_TRUE(m_desktop.m_lastUserInfo.isEmpty());
}

TEST_F(AppDelegateTest, OpensLinksByTag)
{
    launch();
    m_delegate.showHelp();
    menu().btnStorePage->trigger();
    menu().menuHelp->actions().at(5)->trigger();
    for (const int tag : {0, 5, 8, -1})
        m_delegate.helpMenuItemTapped(tag);
    QStringList opened;
    for (const QUrl &url : m_desktop.m_workspace.m_opened)
        opened << (url.isLocalFile() ? url.fileName() : url.toString());
    EXPECT_EQ(opened, QStringList({u"index.html"_s, u"appstream:org.hazelmark.Hazelmark"_s,
                                   u"appstream:org.gimp.GIMP"_s, u"index.html"_s}));
}

TEST_F(AppDelegateTest, OnlyTheMainWindowsClosingEndsTheProcess)
{
    m_desktop.m_defaults.setBoolean(u"notShowPromotionWindow"_s, true);
    launch();
    QDialog dialog(&window());
    QMenu popup;
    for (QWidget *widget : std::initializer_list<QWidget *>{&dialog, &popup}) {
        widget->show();
        widget->close();
    }
    window().setActions({.close = [] {}, .minimize = {}, .zoom = {}, .fullScreen = {}});
    window().close();
    QCoreApplication::processEvents();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(m_terminated, 0) << "the window refused to close";
    window().closeNow();
    EXPECT_EQ(m_terminated, 0) << "the hook does not wait, and is not waited for";
    QCoreApplication::processEvents();
    EXPECT_EQ(m_terminated, 1);
    menu().btnQuitApp->trigger();
    EXPECT_EQ(m_terminated, 2);
}

TEST_F(AppDelegateTest, ThePromotionWindowIsTheLastOneAndCanBeSwitchedOff)
{
    launch();
    PromotionWindow &promotion = *m_delegate.windowPromotion();
    for (const bool byItsButton : {false, true}) {
        promotion.btnCheckDontShow()->setChecked(byItsButton);
        m_terminated = 0;
        window().show();
        window().closeNow();
        QCoreApplication::processEvents();
        EXPECT_EQ(m_terminated, 0);
        EXPECT_TRUE(promotion.isVisible() && promotion.isRotating());
        if (byItsButton)
            promotion.btnQuitAppPromotion()->click();
        else
            promotion.close();
        QCoreApplication::processEvents();
        EXPECT_EQ(m_terminated, 1);
        EXPECT_EQ(m_desktop.m_defaults.boolean(u"notShowPromotionWindow"_s), byItsButton);
    }
}

TEST_F(AppDelegateTest, KnowsWhetherItIsInFront)
{
    launch();
    QWidget &view = *m_delegate.myWindowController()->viewController()->view();
    QCursor::setPos(view.mapToGlobal(view.rect().center()));
    for (const auto &[before, after] :
         {std::pair{Qt::BlankCursor, Qt::ArrowCursor}, {Qt::IBeamCursor, Qt::IBeamCursor}}) {
        view.setCursor(before);
        QGuiApplication::setOverrideCursor(Qt::CrossCursor);
        m_delegate.applicationWillResignActive();
        EXPECT_FALSE(m_delegate.isAppActive() || QGuiApplication::overrideCursor());
        EXPECT_EQ(view.cursor().shape(), after);
        m_delegate.applicationDidBecomeActive();
        EXPECT_TRUE(m_delegate.isAppActive());
    }
}

TEST_F(AppDelegateTest, AboutIsASheetThatNamesTheVersion)
{
    launch();
    menu().btnAboutApp->trigger();
    QDialog *sheet = SheetQueue::forWindow(window()).current();
    ASSERT_TRUE(qobject_cast<AboutDialog *>(sheet));
    QStringList texts;
    for (const QLabel *label : sheet->findChildren<QLabel *>())
        texts.append(label->text());
    EXPECT_TRUE(texts.contains(u"Version "_s + Bundle::infoDictionary().value(u"CFBundleVersion"_s).toString()));
    EXPECT_FALSE(texts.contains(u"(null)"_s));
    sheet->accept();
}
