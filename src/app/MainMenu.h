#pragma once

#include "LinkTable.h"

#include <QObject>

class QAction;
class QMenu;
class QMenuBar;

namespace hazelmark {

class EditMenus;
class Localisation;

/// The menu bar of the main window. Its items say only what was chosen; the application delegate acts.
class MainMenu : public QObject
{
    Q_OBJECT

public:
    /// `links`: which of the Help menu's tags have a page.
    explicit MainMenu(const LinkTable &links);

    /// The window that shows it becomes its owner.
    QMenuBar *menuBar() const { return m_menuBar; }
    EditMenus &editMenus() const { return *m_editMenus; }
    /// Gives every item its text.
    void setLocalizedStrings(Localisation &texts);
    /// An item that makes no sense without a photo, or during an export, is disabled, its key with it.
    void setAvailable(bool hasPhoto, bool isUiDisabled);

    QAction *btnOpenOnMenu = nullptr;
    QAction *btnDeleteOnMenu = nullptr;
    QAction *btnSaveOnMenu = nullptr;
    QAction *btnSaveAsOnMenu = nullptr;
    QAction *btnQuitApp = nullptr;
    QAction *btnTips = nullptr;
    QAction *btnKeyboard = nullptr; ///< the list of keys
    QAction *btnHelpApp = nullptr;
    QAction *btnStorePage = nullptr;       ///< null when there is no such page
    QAction *btnRecommendedApps = nullptr; ///< the heading over the recommended programs; hidden without any
    QAction *btnAboutApp = nullptr;
    QMenu *menuFile = nullptr;
    QMenu *menuLanguage = nullptr;
    QMenu *menuHelp = nullptr;

signals:
    void openTapped();
    void closeTapped();
    void saveTapped();
    void saveAsTapped();
    void quitTapped();
    void languageTapped(int tag);
    void tipsTapped();
    void keyboardTapped();
    void helpTapped();
    void linkTapped(int tag);
    void aboutTapped();

private:
    void makeFileMenu();
    void makeLanguageMenu();
    void markLanguage();
    void makeHelpMenu(const LinkTable &links);
    void makeMenuKeys();

    QMenuBar *m_menuBar;
    EditMenus *m_editMenus = nullptr;
    QList<QAction *> m_languages; ///< by tag
    int m_languageInForce = 0;    ///< its tag
    QAction *m_languageFollowsSystem = nullptr;
};

} // namespace hazelmark
