#include "AppDelegate.h"

#include "AboutDialog.h"
#include "EditMenus.h"
#include "IMGButton.h"
#include "ImageCatalog.h"
#include "KeyboardDialog.h"
#include "Log.h"
#include "MainMenu.h"
#include "ManualWindow.h"
#include "NotificationNames.h"
#include "ProcessState.h"
#include "PromotionWindow.h"
#include "SheetQueue.h"
#include "TitlebarWindow.h"
#include "UserDefaults.h"
#include "Workspace.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCursor>

namespace hazelmark {

namespace {

const QString kNotShowPromotionWindow = QStringLiteral("notShowPromotionWindow");

void post(QLatin1String name)
{
    NotificationCenter::defaultCenter().post(name);
}

/// "TitlebarWindow" of hazelmark::TitlebarWindow.
QString classNameWithoutNamespace(const QObject &object)
{
    return QString::fromLatin1(object.metaObject()->className()).section(QLatin1String("::"), -1);
}

} // namespace

AppDelegate::AppDelegate(ScreenFactory makeMainScreen)
    : m_makeMainScreen(std::move(makeMainScreen))
    , m_terminate([] { QCoreApplication::exit(0); }) // not quit(), which asks every window first
    , m_ratePrompt([this] { return m_myWindowController ? m_myWindowController->windowMain() : nullptr; },
                   [this] { return linkForTag(LinkTable::kStorePageTag); })
{
    // By it the desktop knows which windows are this program's, and shows its icon for them.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.hazelmark.Hazelmark"));
    QGuiApplication::setWindowIcon(ImageCatalog::iconNamed(QStringLiteral("hazelmark")));
    // The process ends when handleWindowClose_Main() says so.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            applicationDidBecomeActive();
        else
            applicationWillResignActive();
    });
    connect(qGuiApp, &QCoreApplication::aboutToQuit, this, &AppDelegate::applicationWillTerminate);
}

AppDelegate::~AppDelegate()
{
    qGuiApp->removeEventFilter(this);
}

void AppDelegate::applicationDidFinishLaunching()
{
    ProcessState::shared().isAppActive = true;
    openMainWindow();
    qGuiApp->installEventFilter(this); // the closing of any window
    promotionWindowSetup();
    checkForRateupPopup();
    setLocalizedStrings();
}

void AppDelegate::openMainWindow()
{
    if (!m_myWindowController) {
        m_myWindowController = std::make_unique<MainWinController>([this] { return m_makeMainScreen(*this); });
        m_mainMenu = std::make_unique<MainMenu>(m_links);
        m_myWindowController->windowMain()->setMenuBar(m_mainMenu->menuBar());
        connect(m_mainMenu.get(), &MainMenu::openTapped, this, &AppDelegate::openTapped);
        connect(m_mainMenu.get(), &MainMenu::closeTapped, this, &AppDelegate::closeTapped);
        connect(m_mainMenu.get(), &MainMenu::saveTapped, this, &AppDelegate::saveTapped);
        connect(m_mainMenu.get(), &MainMenu::saveAsTapped, this, &AppDelegate::saveAsTapped);
        connect(m_mainMenu.get(), &MainMenu::quitTapped, this, &AppDelegate::btnQuitApp);
        connect(m_mainMenu.get(), &MainMenu::languageTapped, this, &AppDelegate::btnSetLanguageAction);
        connect(m_mainMenu.get(), &MainMenu::tipsTapped, this, &AppDelegate::showTips);
        connect(m_mainMenu.get(), &MainMenu::helpTapped, this, &AppDelegate::showHelp);
        connect(m_mainMenu.get(), &MainMenu::linkTapped, this, &AppDelegate::helpMenuItemTapped);
        connect(m_mainMenu.get(), &MainMenu::aboutTapped, this, &AppDelegate::showAbout);
        connect(m_mainMenu.get(), &MainMenu::keyboardTapped, this, &AppDelegate::showKeys);
        connect(&m_mainMenu->editMenus(), &EditMenus::commandTapped, this, [](MenuCommand command, int index) {
            NotificationCenter::defaultCenter().post(
                kNotificationCommandFromMenuTapped,
                {{kCommandKey, static_cast<int>(command)}, {kCommandIndexKey, index}});
        });
        updateMenu();
        setMenuState(m_menuState); // the main screen was there before the menus
    }
    m_myWindowController->showWindow();
}

void AppDelegate::promotionWindowSetup()
{
    if (!m_windowPromotion) {
        m_windowPromotion = std::make_unique<PromotionWindow>(m_localisation);
        connect(m_windowPromotion.get(), &PromotionWindow::quitTapped, this, &AppDelegate::btnQuitApp);
    }
    m_windowPromotion->promotionWindowSetup();
}

QVariantList AppDelegate::arrOurApps() const
{
    return m_windowPromotion ? m_windowPromotion->arrOurApps() : QVariantList();
}

/// The person asked not to see the promotion window again.
void AppDelegate::rememberPromotionChoice()
{
    if (!m_windowPromotion || !m_windowPromotion->btnCheckDontShow()->isChecked())
        return;
    UserDefaults::standardUserDefaults().setBoolean(kNotShowPromotionWindow, true);
    UserDefaults::standardUserDefaults().synchronize();
}

void AppDelegate::checkForRateupPopup()
{
    m_ratePrompt.checkForRateupPopup();
}

void AppDelegate::showAlertForRateApp()
{
    m_ratePrompt.showAlertForRateApp();
}

void AppDelegate::setLocalizedStrings()
{
    m_mainMenu->setLocalizedStrings(m_localisation);
    const auto lookup = [this](const char *key) { return getLocalizedStringForKey(QString::fromLatin1(key)); };
    m_myWindowController->windowMain()->setButtonNames(lookup("CLOSE_WINDOW"), lookup("MINIMIZE_WINDOW"),
                                                       lookup("ZOOM_WINDOW"), lookup("FULL_SCREEN"));
    m_myWindowController->windowMain()->closeButton()->setToolTip(
        lookup("CLOSE_WINDOW") + QStringLiteral(" (") +
        m_mainMenu->btnDeleteOnMenu->shortcut().toString(QKeySequence::NativeText) + QLatin1Char(')'));
    m_windowPromotion->setLocalizedStrings();
}

void AppDelegate::applicationDidBecomeActive()
{
    ProcessState::shared().isAppActive = true;
}

void AppDelegate::applicationWillResignActive()
{
    ProcessState::shared().isAppActive = false;
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    // A view under the pointer may have hidden it or made it its brush; a text field's beam is nothing to undo.
    if (QWidget *view = QApplication::widgetAt(QCursor::pos())) {
        const Qt::CursorShape shape = view->cursor().shape();
        if (shape == Qt::BlankCursor || shape == Qt::BitmapCursor)
            view->setCursor(Qt::ArrowCursor);
    }
}

void AppDelegate::openTapped()
{
    post(kNotificationOpenPhotoFromMenuTapped);
}
void AppDelegate::closeTapped()
{
    post(kNotificationClosePhotoFromMenuTapped);
}
void AppDelegate::saveTapped()
{
    post(kNotificationSavePhotoFromMenuTapped);
}
void AppDelegate::saveAsTapped()
{
    saveTapped();
}
void AppDelegate::showTips()
{
    post(kNotificationShowTipsFromMenuTapped);
}
void AppDelegate::showHelp()
{
    helpMenuItemTapped(LinkTable::kHomePageTag);
}

void AppDelegate::helpMenuItemTapped(int tag)
{
    const QUrl address = linkForTag(tag);
    if (address.isEmpty())
        return;
    Workspace::sharedWorkspace().openUrl(address, [self = QPointer(this), tag](bool opened) {
        if (self && !opened && tag == LinkTable::kHomePageTag)
            self->showManual();
    });
}

/// The manual in a window of the program's own, where the desktop has no browser.
void AppDelegate::showManual()
{
    if (!m_manual)
        m_manual = new ManualWindow(linkForTag(LinkTable::kHomePageTag), m_mainMenu->btnHelpApp->text(),
                                    m_myWindowController->windowMain());
    m_manual->show();
    m_manual->raise();
    m_manual->activateWindow();
}

void AppDelegate::showKeys()
{
    SheetQueue::forWindow(*m_myWindowController->windowMain()).present(new KeyboardDialog(m_localisation));
}

void AppDelegate::btnSetLanguageAction(int tag)
{
    m_localisation.loadLanguageSettings(tag);
    post(kNotificationUpdateLanguage);
}

void AppDelegate::btnQuitApp()
{
    rememberPromotionChoice();
    m_terminate();
}

void AppDelegate::showAbout()
{
    SheetQueue::forWindow(*m_myWindowController->windowMain()).present(new AboutDialog(m_localisation));
}

bool AppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close) {
        auto *window = qobject_cast<QWidget *>(watched);
        // Menus, tool tips and pop-ups come and go; they are no windows to a person.
        if (window && window->isWindow() && (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog))
            handleWindowClose(window);
    }
    return QObject::eventFilter(watched, event);
}

void AppDelegate::handleWindowClose(QWidget *window)
{
    QMetaObject::invokeMethod(
        this,
        [this, window = QPointer(window), className = classNameWithoutNamespace(*window)] {
            if (!window || !window->isVisible()) // else it refused
                handleWindowClose_Main(className);
        },
        Qt::QueuedConnection);
}

void AppDelegate::handleWindowClose_Main(const QString &className)
{
    qCInfo(lcApp).noquote() << "closing Window Class" << className;
    if (className == QLatin1String("TitlebarWindow")) {
        const bool isUnwanted = UserDefaults::standardUserDefaults().boolean(kNotShowPromotionWindow);
        if (isUnwanted || arrOurApps().isEmpty()) {
            m_terminate();
            return;
        }
        qCInfo(lcApp) << "showing the promotion window";
        m_windowPromotion->present();
    } else if (className == QLatin1String("PromotionWindow")) {
        rememberPromotionChoice();
        m_terminate();
    }
}

void AppDelegate::setSelectedImageFile(std::shared_ptr<PhotoFile> file)
{
    m_selectedImageFile = std::move(file);
    updateMenu();
}

bool AppDelegate::isUiDisabled() const
{
    return ProcessState::shared().isUiDisabled;
}

void AppDelegate::setIsUiDisabled(bool disabled)
{
    ProcessState::shared().isUiDisabled = disabled;
    updateMenu();
}

bool AppDelegate::isAppActive() const
{
    return ProcessState::shared().isAppActive;
}

void AppDelegate::updateMenu()
{
    if (m_mainMenu)
        m_mainMenu->setAvailable(m_selectedImageFile != nullptr, isUiDisabled());
}

void AppDelegate::setMenuState(const MenuState &state)
{
    m_menuState = state;
    if (m_mainMenu)
        m_mainMenu->editMenus().setState(state);
}

QString AppDelegate::getLocalizedStringForKey(const QString &key)
{
    return m_localisation.getLocalizedStringForKey(key);
}

QString AppDelegate::getLocalizedString(const QString &key, const QString &text)
{
    return m_localisation.getLocalizedString(key, text);
}

} // namespace hazelmark
