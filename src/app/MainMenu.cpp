#include "MainMenu.h"

#include "Bundle.h"
#include "EditMenus.h"
#include "FormatString.h"
#include "Localisation.h"
#include "MenuTitle.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

#include <array>
#include <utility>

namespace hazelmark {

namespace {

// In their own languages: whoever looks for theirs may not read the others. By tag.
const std::array kLanguages{u"English", u"Français", u"Deutsch", u"中文", u"日本語"};

QString bundleName()
{
    return Bundle::infoDictionary().value(QStringLiteral("CFBundleName")).toString();
}

} // namespace

MainMenu::MainMenu(const LinkTable &links)
    : m_menuBar(new QMenuBar)
{
    makeFileMenu();
    m_editMenus = new EditMenus(*m_menuBar);
    makeLanguageMenu();
    makeHelpMenu(links);
    makeMenuKeys();
}

/// The same in every language, whatever the titles are.
void MainMenu::makeMenuKeys()
{
    const std::pair<int, QMenu *> menus[] = {{Qt::Key_F10, menuFile},
                                             {Qt::ALT | Qt::Key_F, menuFile},
                                             {Qt::ALT | Qt::Key_E, m_editMenus->menuEdit},
                                             {Qt::ALT | Qt::Key_V, m_editMenus->menuView},
                                             {Qt::ALT | Qt::Key_L, menuLanguage},
                                             {Qt::ALT | Qt::Key_H, menuHelp}};
    for (const auto &[key, menu] : menus) {
        auto *shortcut = new QShortcut(QKeySequence(key), m_menuBar);
        connect(shortcut, &QShortcut::activated, m_menuBar, [this, menu = menu] {
            m_menuBar->setActiveAction(menu->menuAction());
            menu->setActiveAction(menu->actions().first());
        });
    }
}

void MainMenu::makeFileMenu()
{
    menuFile = m_menuBar->addMenu(QString());
    btnOpenOnMenu = menuFile->addAction(QString(), QKeySequence(Qt::CTRL | Qt::Key_O), this, &MainMenu::openTapped);
    btnDeleteOnMenu = menuFile->addAction(QString(), QKeySequence(Qt::CTRL | Qt::Key_W), this, &MainMenu::closeTapped);
    menuFile->addSeparator();
    btnSaveOnMenu = menuFile->addAction(QString(), QKeySequence(Qt::CTRL | Qt::Key_S), this, &MainMenu::saveTapped);
    btnSaveAsOnMenu =
        menuFile->addAction(QString(), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), this, &MainMenu::saveAsTapped);
    menuFile->addSeparator();
    btnQuitApp = menuFile->addAction(QString(), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &MainMenu::quitTapped);
}

void MainMenu::makeLanguageMenu()
{
    menuLanguage = m_menuBar->addMenu(QString());
    for (size_t tag = 0; tag < kLanguages.size(); ++tag) {
        QAction *language = menuLanguage->addAction(QString::fromUtf16(kLanguages[tag]));
        language->setCheckable(true);
        connect(language, &QAction::triggered, this, [this, tag] {
            markLanguage(); // a choice changes no text: the mark stays where it was
            emit languageTapped(static_cast<int>(tag));
        });
        m_languages.append(language);
    }
    menuLanguage->addSeparator();
    m_languageFollowsSystem = menuLanguage->addAction(QString());
    m_languageFollowsSystem->setEnabled(false);
}

void MainMenu::makeHelpMenu(const LinkTable &links)
{
    menuHelp = m_menuBar->addMenu(QString());
    btnTips = menuHelp->addAction(QString(), this, &MainMenu::tipsTapped);
    btnKeyboard = menuHelp->addAction(QString(), this, &MainMenu::keyboardTapped);
    // The item of tag 0 as well: the program's own page is its manual.
    btnHelpApp = menuHelp->addAction(QString(), QKeySequence(Qt::Key_F1), this, &MainMenu::helpTapped);
    if (!links.address(LinkTable::kStorePageTag).isEmpty()) {
        btnStorePage = menuHelp->addAction(QString(), this, [this] { emit linkTapped(LinkTable::kStorePageTag); });
    }
    menuHelp->addSeparator();
    btnRecommendedApps = menuHelp->addAction(QString());
    btnRecommendedApps->setEnabled(false);
    bool recommendsAny = false;
    for (int tag = 0; tag <= LinkTable::kLastTag; ++tag) {
        if (tag == LinkTable::kHomePageTag || tag == LinkTable::kStorePageTag || links.address(tag).isEmpty())
            continue;
        recommendsAny = true;
        menuHelp->addAction(asTitle(links.name(tag)), this, [this, tag] { emit linkTapped(tag); });
    }
    btnRecommendedApps->setVisible(recommendsAny);
    menuHelp->addSeparator();
    btnAboutApp = menuHelp->addAction(QString(), this, &MainMenu::aboutTapped);
    btnAboutApp->setMenuRole(QAction::AboutRole);
}

void MainMenu::markLanguage()
{
    for (qsizetype tag = 0; tag < m_languages.size(); ++tag)
        m_languages[tag]->setChecked(tag == m_languageInForce);
}

void MainMenu::setLocalizedStrings(Localisation &texts)
{
    const auto lookup = [&](const char *key) { return texts.getLocalizedStringForKey(QString::fromLatin1(key)); };
    const auto both = [](const QString &first, const QString &second) {
        return asTitle(formatString(QStringLiteral("%@ %@"), {first, second}));
    };
    btnOpenOnMenu->setText(asTitle(lookup("OPEN")));
    btnDeleteOnMenu->setText(asTitle(lookup("DELETE")));
    btnSaveOnMenu->setText(asTitle(lookup("SAVE")));
    btnSaveAsOnMenu->setText(asTitle(lookup("SAVE_AS")));
    menuFile->setTitle(asTitle(lookup("FILE")));
    menuHelp->setTitle(asTitle(lookup("HELP")));
    btnAboutApp->setText(both(lookup("ABOUT"), bundleName()));
    btnQuitApp->setText(both(lookup("QUIT"), bundleName()));
    btnHelpApp->setText(both(bundleName(), lookup("HELP")));
    btnRecommendedApps->setText(asTitle(formatString(QStringLiteral("%@ :-"), {lookup("RECOMMENDED_APPS")})));
    btnTips->setText(asTitle(lookup("SHOW_TIPS")));
    btnKeyboard->setText(asTitle(lookup("KEYBOARD")));
    m_editMenus->setLocalizedStrings(texts);
    menuLanguage->setTitle(asTitle(lookup("LANGUAGE")));
    m_languageInForce = texts.languageInForce();
    markLanguage();
    m_languageFollowsSystem->setText(asTitle(lookup("LANGUAGE_FOLLOWS_SYSTEM")));
    if (btnStorePage)
        btnStorePage->setText(asTitle(formatString(lookup("STORE_PAGE"), {bundleName()})));
}

void MainMenu::setAvailable(bool hasPhoto, bool isUiDisabled)
{
    btnOpenOnMenu->setEnabled(!hasPhoto || !isUiDisabled);
    btnSaveOnMenu->setEnabled(hasPhoto && !isUiDisabled);
    btnSaveAsOnMenu->setEnabled(hasPhoto && !isUiDisabled);
}

} // namespace hazelmark
