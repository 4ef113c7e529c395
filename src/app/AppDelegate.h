#pragma once

#include "ApplicationDelegate.h"
#include "LinkTable.h"
#include "Localisation.h"
#include "MainWinController.h"
#include "RatePrompt.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>

#include <functional>
#include <memory>

namespace hazelmark {

class MainMenu;
class ManualWindow;
class PromotionWindow;
class TitlebarWindow;

/// The application delegate: starts the program, holds what belongs to the process and not to a window, turns menu
/// commands into notifications, and decides what the closing of a window means. One a process, made by `main` after
/// the application object and ended before it.
class AppDelegate : public QObject, public ApplicationDelegate
{
    Q_OBJECT

public:
    /// Makes the main screen; the delegate outlives it.
    using ScreenFactory = std::function<std::unique_ptr<ViewController>(ApplicationDelegate &)>;

    explicit AppDelegate(ScreenFactory makeMainScreen);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    void applicationDidBecomeActive();
    void applicationWillResignActive();
    /// Nothing is saved on exit.
    void applicationWillTerminate() {}

    // Menu actions.
    void openTapped();
    void closeTapped();
    void saveTapped();
    void saveAsTapped();
    void showTips();
    void showHelp();
    void helpMenuItemTapped(int tag);
    void btnSetLanguageAction(int tag);
    void btnQuitApp();
    void showAbout();
    void showKeys();
    void showManual();

    void openMainWindow();
    void promotionWindowSetup();
    void checkForRateupPopup();
    void setLocalizedStrings();
    /// A window has been told to close; whether it did is seen when the event is over.
    void handleWindowClose(QWidget *window);

    // ApplicationDelegate
    std::shared_ptr<PhotoFile> selectedImageFile() const override { return m_selectedImageFile; }
    void setSelectedImageFile(std::shared_ptr<PhotoFile> file) override;
    QStringList arraySelectedImagesToProcess() const override { return m_arraySelectedImagesToProcess; }
    bool isUiDisabled() const override;
    void setIsUiDisabled(bool disabled) override;
    bool isAppActive() const override;
    QString getLocalizedStringForKey(const QString &key) override;
    QUrl linkForTag(int tag) const override { return m_links.address(tag); }
    void showAlertForRateApp() override;
    void setMenuState(const MenuState &state) override;

    QString getLocalizedString(const QString &key, const QString &text);
    const Localisation &localisation() const { return m_localisation; }
    MainWinController *myWindowController() const { return m_myWindowController.get(); }
    MainMenu *mainMenu() const { return m_mainMenu.get(); }
    /// The programs that the promotion window shows: dictionaries with "appName", "imageName", "url" and "Desc".
    QVariantList arrOurApps() const;
    PromotionWindow *windowPromotion() const { return m_windowPromotion.get(); } ///< null before the launch

    // Part of the delegate's interface; nothing in the program reads or sets them. The main window is reached through
    // its controller, and the speed of rendering is known where it is measured.
    QObject *selectedImageFileToProccessing = nullptr;
    QWidget *windowMain = nullptr;
    double pixelsProcessRate = 0;

    /// Ends the process; tests put something else in its place.
    void setTerminate(std::function<void()> terminate) { m_terminate = std::move(terminate); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void handleWindowClose_Main(const QString &className);
    void rememberPromotionChoice();
    void updateMenu();

    ScreenFactory m_makeMainScreen;
    std::function<void()> m_terminate;
    Localisation m_localisation;
    LinkTable m_links;
    std::unique_ptr<MainWinController> m_myWindowController;
    std::unique_ptr<MainMenu> m_mainMenu;
    MenuState m_menuState;
    QPointer<ManualWindow> m_manual;
    std::unique_ptr<PromotionWindow> m_windowPromotion;
    std::shared_ptr<PhotoFile> m_selectedImageFile;
    QStringList m_arraySelectedImagesToProcess;
    RatePrompt m_ratePrompt;
};

} // namespace hazelmark
