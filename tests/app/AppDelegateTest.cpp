#include "AppDelegate.h"
#include "AboutDialog.h"
#include "Fakes.h"
#include "MainMenu.h"
#include "NotificationNames.h"
#include "PhotoFile.h"
#include "PromotionWindow.h"
#include "SheetQueue.h"
#include "TitlebarWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

class AppDelegateTest : public testing::Test
{
protected:
    AppDelegateTest()
        : m_delegate([this](ApplicationDelegate &delegate) {
            m_wasActiveAtTheScreen = delegate.isAppActive();
            m_textAtTheScreen = delegate.getLocalizedStringForKey(QStringLiteral("SAVE"));
            return std::make_unique<FakeScreenController>();
        })
    {
        m_delegate.setTerminate([this] { ++m_terminated; });
    }
    ~AppDelegateTest() override { QGuiApplication::setQuitOnLastWindowClosed(true); }

    void launch() { m_delegate.applicationDidFinishLaunching(); }
    MainMenu &menu() { return *m_delegate.mainMenu(); }
    TitlebarWindow &window() { return *m_delegate.myWindowController()->windowMain(); }
    static void closeAndSettle(QWidget &widget)
    {
        widget.close();
        QCoreApplication::processEvents();
    }

    FakeDesktop m_desktop;
    bool m_wasActiveAtTheScreen = false;
    QString m_textAtTheScreen;
    int m_terminated = 0;
    AppDelegate m_delegate;
};

QStringList titles(const QMenu &menu)
{
    QStringList titles;
    for (const QAction *action : menu.actions())
        titles.append(action->isVisible() ? action->text() : QStringLiteral("hidden"));
    return titles;
}

} // namespace

TEST_F(AppDelegateTest, LaunchesActiveWithTheMainScreenAndItsTexts)
{
    m_desktop.observe({kNotificationSetupHeader});
    EXPECT_FALSE(m_delegate.isAppActive());
    launch();
    EXPECT_TRUE(m_wasActiveAtTheScreen);
    EXPECT_EQ(m_textAtTheScreen, QStringLiteral("Save"));
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(m_desktop.m_posted.size(), 1);
    EXPECT_EQ(m_delegate.arrOurApps().size(), 3);
    EXPECT_FALSE(m_delegate.windowPromotion()->isVisible());
    EXPECT_EQ(m_desktop.m_defaults.integer(QStringLiteral("appOpenedCount")), 1);
    MainWinController *controller = m_delegate.myWindowController();
    m_delegate.openMainWindow();
    EXPECT_EQ(m_delegate.myWindowController(), controller) << "the window is made once";
    EXPECT_FALSE(QGuiApplication::quitOnLastWindowClosed());
}

TEST_F(AppDelegateTest, TitlesItsMenus)
{
    launch();
    EXPECT_EQ(menu().menuFile->title(), QStringLiteral("File"));
    EXPECT_EQ(titles(*menu().menuFile), (QStringList{QStringLiteral("Open…"),
                                                     QStringLiteral("Close"),
                                                     {},
                                                     QStringLiteral("Save"),
                                                     QStringLiteral("Save As…"),
                                                     {},
                                                     QStringLiteral("Quit Hazelmark")}));
    EXPECT_EQ(titles(*menu().menuLanguage).mid(2),
              (QStringList{QStringLiteral("English"), QStringLiteral("Français"), QStringLiteral("Deutsch"),
                           QStringLiteral("中文"), QStringLiteral("日本語")}));
    EXPECT_FALSE(menu().menuLanguage->actions().first()->isEnabled());
    EXPECT_EQ(menu().btnHelpApp->text(), QStringLiteral("Hazelmark Help"));
    EXPECT_EQ(menu().btnAboutApp->text(), QStringLiteral("About Hazelmark"));
    EXPECT_EQ(menu().btnRecommendedApps->text(), QStringLiteral("Recommended applications :-"));
    EXPECT_EQ(titles(*menu().menuHelp).mid(5, 3),
              (QStringList{QStringLiteral("GIMP"), QStringLiteral("darktable"), QStringLiteral("digiKam")}));
    ASSERT_TRUE(menu().btnStorePage);
    EXPECT_EQ(menu().btnStorePage->text(), QStringLiteral("Hazelmark in the Software Centre"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return menu().menuBar()->width() > 100; })) << "room for its titles";
    EXPECT_EQ(menu().menuBar()->window(), &window());
}

TEST_F(AppDelegateTest, TitlesItsMenusInTheSystemsLanguage)
{
    m_desktop.m_session.m_languages = {QStringLiteral("de-DE")};
    launch();
    EXPECT_EQ(menu().menuFile->title(), QStringLiteral("Datei"));
    EXPECT_EQ(menu().btnAboutApp->text(), QStringLiteral("Über Hazelmark"));
    m_desktop.observe({kNotificationUpdateLanguage});
    menu().menuLanguage->actions().last()->trigger();
    EXPECT_EQ(m_desktop.m_posted, QStringList(kNotificationUpdateLanguage));
    EXPECT_EQ(m_delegate.localisation().languageSettingsDict()->value(QStringLiteral("SAVE")).toString(),
              QStringLiteral("保存"));
    EXPECT_EQ(m_delegate.getLocalizedStringForKey(QStringLiteral("FILE")), QStringLiteral("Datei"));
    EXPECT_EQ(menu().menuFile->title(), QStringLiteral("Datei"));
}

TEST_F(AppDelegateTest, MenuItemsPostTheirNotifications)
{
    launch();
    m_delegate.setSelectedImageFile(std::make_shared<PhotoFile>(QStringLiteral("/photo.jpg")));
    m_desktop.observe({kNotificationOpenPhotoFromMenuTapped, kNotificationClosePhotoFromMenuTapped,
                       kNotificationSavePhotoFromMenuTapped, kNotificationShowTipsFromMenuTapped});
    for (QAction *item :
         {menu().btnOpenOnMenu, menu().btnDeleteOnMenu, menu().btnSaveOnMenu, menu().btnSaveAsOnMenu, menu().btnTips})
        item->trigger();
    EXPECT_EQ(m_desktop.m_posted,
              (QStringList{kNotificationOpenPhotoFromMenuTapped, kNotificationClosePhotoFromMenuTapped,
                           kNotificationSavePhotoFromMenuTapped, kNotificationSavePhotoFromMenuTapped,
                           kNotificationShowTipsFromMenuTapped}));
    EXPECT_TRUE(m_desktop.m_lastUserInfo.isEmpty());
}

TEST_F(AppDelegateTest, ItemsThatMakeNoSenseAreDisabled)
{
    launch();
    const auto enabled = [this] {
        QString state;
        for (const QAction *item : {menu().btnOpenOnMenu, menu().btnDeleteOnMenu, menu().btnSaveOnMenu,
                                    menu().btnSaveAsOnMenu, menu().btnQuitApp})
            state += QLatin1Char(item->isEnabled() ? '1' : '0');
        return state;
    };
    m_delegate.setIsUiDisabled(true);
    EXPECT_EQ(enabled(), QStringLiteral("11001")) << "no photo";
    m_delegate.setSelectedImageFile(std::make_shared<PhotoFile>(QStringLiteral("/photo.jpg")));
    m_delegate.setIsUiDisabled(false);
    EXPECT_EQ(enabled(), QStringLiteral("11111"));
    m_delegate.setIsExporting(true);
    EXPECT_EQ(enabled(), QStringLiteral("01001"));
    m_delegate.setIsExporting(false);
    EXPECT_EQ(enabled(), QStringLiteral("11111"));
}

TEST_F(AppDelegateTest, OpensLinksByTag)
{
    launch();
    m_delegate.showHelp();
    menu().btnStorePage->trigger();
    menu().menuHelp->actions().at(5)->trigger();
    for (const int tag : {0, 5, 8, -1})
        m_delegate.helpMenuItemTapped(tag);
    ASSERT_EQ(m_desktop.m_workspace.m_opened.size(), 4U);
    EXPECT_TRUE(m_desktop.m_workspace.m_opened[0].toLocalFile().endsWith(QLatin1String("/manual/index.html")));
    EXPECT_EQ(m_desktop.m_workspace.m_opened[1].scheme(), QStringLiteral("appstream"));
    EXPECT_EQ(m_desktop.m_workspace.m_opened[2].toString(), QStringLiteral("appstream:org.gimp.GIMP"));
    EXPECT_EQ(m_desktop.m_workspace.m_opened[3], m_desktop.m_workspace.m_opened[0]);
}

TEST_F(AppDelegateTest, OnlyTheMainWindowsClosingEndsTheProcess)
{
    m_desktop.m_defaults.setBoolean(QStringLiteral("notShowPromotionWindow"), true);
    launch();
    QDialog dialog(&window());
    dialog.show();
    closeAndSettle(dialog);
    QMenu popup;
    popup.show();
    closeAndSettle(popup);
    EXPECT_EQ(m_terminated, 0);
    window().setActions({.close = [] {}, .minimize = {}, .zoom = {}, .fullScreen = {}});
    closeAndSettle(window());
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(m_terminated, 0) << "the window refused to close";
    window().closeNow();
    EXPECT_EQ(m_terminated, 0) << "the hook does not wait, and is not waited for";
    QCoreApplication::processEvents();
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(AppDelegateTest, ThePromotionWindowIsTheLastOne)
{
    launch();
    window().closeNow();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_terminated, 0);
    PromotionWindow &promotion = *m_delegate.windowPromotion();
    EXPECT_TRUE(promotion.isVisible() && promotion.isRotating());
    closeAndSettle(promotion);
    EXPECT_EQ(m_terminated, 1);
    EXPECT_FALSE(m_desktop.m_defaults.boolean(QStringLiteral("notShowPromotionWindow")));
}

TEST_F(AppDelegateTest, ThePromotionWindowCanBeSwitchedOff)
{
    launch();
    window().closeNow();
    QCoreApplication::processEvents();
    PromotionWindow &promotion = *m_delegate.windowPromotion();
    promotion.btnCheckDontShow()->click();
    QTest::mouseClick(promotion.btnQuitAppPromotion(), Qt::LeftButton);
    EXPECT_EQ(m_terminated, 1);
    EXPECT_TRUE(m_desktop.m_defaults.boolean(QStringLiteral("notShowPromotionWindow")));
}

TEST_F(AppDelegateTest, QuitEndsTheProcessAtOnce)
{
    launch();
    menu().btnQuitApp->trigger();
    EXPECT_EQ(m_terminated, 1);
}

TEST_F(AppDelegateTest, KnowsWhetherItIsInFront)
{
    launch();
    QWidget &view = *m_delegate.myWindowController()->viewController()->view();
    view.setCursor(Qt::BlankCursor);
    QCursor::setPos(view.mapToGlobal(view.rect().center()));
    QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    m_delegate.applicationWillResignActive();
    EXPECT_FALSE(m_delegate.isAppActive());
    EXPECT_FALSE(QGuiApplication::overrideCursor());
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
    m_delegate.applicationDidBecomeActive();
    EXPECT_TRUE(m_delegate.isAppActive());
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
    EXPECT_TRUE(texts.contains(QStringLiteral("Version ") +
                               Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString()));
    EXPECT_FALSE(texts.contains(QStringLiteral("(null)")));
    sheet->accept();
}
