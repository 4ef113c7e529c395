// The application from its launch to its end: menus, notifications, and what the closing of a window means.
#include "AppDelegate.h"
#include "../support/Outline.h"
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
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>

#include <gtest/gtest.h>

using namespace hazelmark;
using namespace Qt::StringLiterals;

namespace {

class AppDelegateTest : public testing::Test
{
protected:
    ~AppDelegateTest() override { QGuiApplication::setQuitOnLastWindowClosed(true); }

    void launch(const QString &language = u"en"_s)
    {
        m_desktop.m_session.m_languages = {language};
        m_delegate.setTerminate([this] { ++m_terminated; });
        m_delegate.applicationDidFinishLaunching();
    }
    MainMenu &menu() { return *m_delegate.mainMenu(); }
    TitlebarWindow &window() { return *m_delegate.myWindowController()->windowMain(); }
    QString titles()
    {
        QString titles;
        for (const QMenu *menu : {menu().menuFile, menu().menuLanguage, menu().menuHelp}) {
            titles += u'#' + menu->title();
            for (const QAction *action : menu->actions())
                titles += u'|' + action->text() + (action->isChecked() ? u"*"_s : u""_s);
        }
        return titles;
    }

    FakeDesktop m_desktop;
    int m_terminated = 0;
    AppDelegate m_delegate{[](auto &) { return std::make_unique<FakeScreenController>(); }};
};

} // namespace

TEST_F(AppDelegateTest, LaunchesActiveWithTheMainScreenAndMenusInTheSystemsLanguage)
{
    launch(u"de-DE"_s);
    EXPECT_TRUE(window().isVisible() && !m_delegate.windowPromotion()->isVisible());
    EXPECT_EQ(m_desktop.m_defaults.integer(u"appOpenedCount"_s), 1);
    EXPECT_EQ(window().closeButton()->toolTip(),
              m_delegate.getLocalizedStringForKey(u"CLOSE_WINDOW"_s) + u" (Ctrl+W)"_s);
    EXPECT_TRUE(QTest::qWaitFor([this] { return menu().menuBar()->width() > 100; })) << "room for its titles";
    const QString german =
        u"#Datei|Öffnen …|Schließen||Speichern|Speichern unter …||Beenden Hazelmark"
        "#Sprache|English|Français|Deutsch*|中文|日本語||Richtet sich nach der Sprache des Systems"
        "#Hilfe|Tipps anzeigen|Tastatur|Hazelmark Hilfe|Hazelmark in der Softwareverwaltung||Empfohlene Programme :-|GIMP|darktable|digiKam||Über Hazelmark"_s;
    EXPECT_EQ(titles(), german);
    m_desktop.observe({kNotificationUpdateLanguage});
    menu().menuLanguage->actions()[4]->trigger();
    EXPECT_EQ(m_desktop.m_posted, QStringList(kNotificationUpdateLanguage));
    EXPECT_EQ(m_delegate.localisation().languageSettingsDict()->value(u"SAVE"_s).toString(), u"保存"_s);
    EXPECT_EQ(titles(), german);
    menu().btnAboutApp->trigger();
    EXPECT_TRUE(qobject_cast<const AboutDialog *>(SheetQueue::forWindow(window()).current()));
}

TEST_F(AppDelegateTest, MenuItemsActWhileTheyMakeSense)
{
    launch();
    const std::pair<QAction *, QString> items[] = {{menu().btnOpenOnMenu, kNotificationOpenPhotoFromMenuTapped},
                                                   {menu().btnDeleteOnMenu, kNotificationClosePhotoFromMenuTapped},
                                                   {menu().btnSaveOnMenu, kNotificationSavePhotoFromMenuTapped},
                                                   {menu().btnSaveAsOnMenu, kNotificationSavePhotoFromMenuTapped},
                                                   {menu().btnTips, kNotificationShowTipsFromMenuTapped}};
    // With a photo open it is an export that disables.
    for (const auto &[hasPhoto, isUiDisabled, posting] :
         {std::tuple{false, true, "11001"}, {true, false, "11111"}, {true, true, "01001"}}) {
        m_delegate.setSelectedImageFile(hasPhoto ? std::make_shared<PhotoFile>(u"/photo.jpg"_s) : nullptr);
        m_delegate.setIsUiDisabled(isUiDisabled);
        std::string posted;
        for (const auto &[item, notification] : items) {
            m_desktop.observe({notification});
            item->trigger();
            posted += m_desktop.m_posted == QStringList(notification) ? '1' : '0';
        }
        EXPECT_EQ(posted, posting);
    }
    m_delegate.showHelp();
    menu().menuHelp->actions().at(6)->trigger();
    m_delegate.helpMenuItemTapped(8);
    EXPECT_EQ(m_desktop.m_workspace.m_opened, QStringList({u"index.html"_s, u"appstream:org.gimp.GIMP"_s}));
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
    QTest::keyClick(&window(), Qt::Key_H, Qt::AltModifier);
    EXPECT_EQ(menu().menuHelp->activeAction(), menu().btnTips);
    menu().menuHelp->close();
    menu().btnKeyboard->trigger();
    EXPECT_TRUE(SheetQueue::forWindow(window()).current()->objectName() == u"keyboardDialog"_s);
}

TEST_F(AppDelegateTest, ShowsTheManualItselfWhereNobodyElseDoes)
{
    launch();
    m_desktop.m_workspace.m_succeeds = false;
    m_delegate.helpMenuItemTapped(LinkTable::kStorePageTag);
    EXPECT_EQ(window().findChild<QWidget *>(u"manual"_s), nullptr);
    menu().btnHelpApp->trigger();
    auto *manual = window().findChild<QWidget *>(u"manual"_s);
    ASSERT_TRUE(manual && QTest::qWaitForWindowActive(manual));
    menu().btnHelpApp->trigger();
    EXPECT_EQ(window().findChildren<QWidget *>(u"manual"_s).size(), 1);
    EXPECT_EQ(toldOf(*manual).toStdString(),
              "manual: Dialog Hazelmark Help; QTextBrowser: StaticText Hazelmark Help s; QScrollBar: ScrollBar");
    auto *page = manual->findChild<QTextBrowser *>();
    EXPECT_TRUE(page->toPlainText().contains(u"Hazelmark"_s) && !page->openExternalLinks());
    const QUrl html = page->source();
    for (const auto &[type, url, isRead] : {std::tuple{QTextDocument::HtmlResource, html, true},
                                            {QTextDocument::ImageResource, html, false},
                                            {QTextDocument::HtmlResource, QUrl(u"https://example.org/"_s), false}})
        EXPECT_EQ(page->loadResource(type, url).isValid(), isRead) << url.toString().toStdString();
    QTest::keyClick(manual, Qt::Key_Escape);
    EXPECT_FALSE(manual->isVisible());
}

TEST_F(AppDelegateTest, TheProcessEndsWithTheMainWindowOrWithThePromotionAfterIt)
{
    launch();
    PromotionWindow &promotion = *m_delegate.windowPromotion();
    window().setActions({.close = [] {}, .minimize = {}, .zoom = {}, .fullScreen = {}});
    QDialog dialog(&window());
    dialog.show();
    dialog.close();
    window().close();
    QCoreApplication::processEvents();
    EXPECT_FALSE(promotion.isVisible()) << "a window of no account closed, and the main window refused to";
    for (const bool byItsButton : {false, true}) {
        window().show();
        window().closeNow();
        QCoreApplication::processEvents();
        EXPECT_TRUE(promotion.isVisible() && promotion.isRotating());
        EXPECT_EQ(m_terminated, byItsButton);
        promotion.btnCheckDontShow()->setChecked(byItsButton);
        byItsButton ? promotion.btnQuitAppPromotion()->click() : void(promotion.close());
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(m_terminated, 2);
    promotion.hide();
    window().show();
    window().closeNow();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_terminated, 3) << "the promotion is not wanted any more";
    EXPECT_FALSE(promotion.isVisible());
}

TEST_F(AppDelegateTest, AHiddenOrDrawnPointerComesBackWhenAnotherProgramComesToTheFront)
{
    launch();
    QWidget &view = *m_delegate.myWindowController()->viewController()->view();
    QCursor::setPos(view.mapToGlobal(view.rect().center()));
    view.setCursor(Qt::BlankCursor);
    QGuiApplication::setOverrideCursor(Qt::CrossCursor);
    emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_FALSE(m_delegate.isAppActive() || QGuiApplication::overrideCursor());
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
    emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    EXPECT_TRUE(m_delegate.isAppActive());
}
