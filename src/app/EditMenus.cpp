#include "EditMenus.h"

#include "Localisation.h"
#include "MenuTitle.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include <utility>

namespace hazelmark {

namespace {

/// Names a key that somebody else listens to.
void showKey(QAction *action, const QKeySequence &key)
{
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetShortcut);
}

} // namespace

EditMenus::EditMenus(QMenuBar &menuBar)
    : QObject(&menuBar)
{
    using C = MenuCommand;
    menuEdit = menuBar.addMenu(QString());
    add(menuEdit, C::Undo, {Qt::CTRL | Qt::Key_Z});
    add(menuEdit, C::Redo, {Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y});
    menuEdit->addSeparator();
    add(menuEdit, C::PastePhoto, {Qt::CTRL | Qt::Key_V});
    menuEdit->addSeparator();
    add(menuEdit, C::BlurEverything, {Qt::CTRL | Qt::SHIFT | Qt::Key_A});
    add(menuEdit, C::ClearPainting, {Qt::Key_Delete});
    menuBrush = menuEdit->addMenu(QString());
    add(menuBrush, C::Brush, {Qt::Key_B});
    add(menuBrush, C::Eraser, {Qt::Key_E});
    menuBrush->addSeparator();
    add(menuBrush, C::BrushSmaller, {Qt::Key_BracketLeft});
    add(menuBrush, C::BrushLarger, {Qt::Key_BracketRight});
    add(menuBrush, C::BrushSofter, {Qt::Key_BraceLeft});
    add(menuBrush, C::BrushHarder, {Qt::Key_BraceRight});
    menuEdit->addSeparator();
    add(menuEdit, C::SavePaintingAs, {});
    add(menuEdit, C::OpenPainting, {});
    menuEdit->addSeparator();
    add(menuEdit, C::ForgetPaintings, {});

    menuView = menuBar.addMenu(QString());
    m_compare = menuView->addAction(QString());
    m_compare->setEnabled(false); // the key is held, which no menu can be
    showKey(m_compare, Qt::Key_C);
    add(menuView, C::ShowPainting, {Qt::Key_G});
    menuView->addSeparator();
    add(menuView, C::ZoomIn, {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal, Qt::Key_Plus, Qt::Key_Equal});
    add(menuView, C::ZoomOut, {Qt::CTRL | Qt::Key_Minus, Qt::Key_Minus});
    add(menuView, C::ZoomFit, {Qt::CTRL | Qt::Key_0});
    add(menuView, C::ZoomFull, {Qt::CTRL | Qt::Key_1});
    menuView->addSeparator();
    add(menuView, C::AllSettings, {});
    menuView->addSeparator();
    add(menuView, C::FullScreen, {});
    showKey(item(C::FullScreen), Qt::Key_F11); // the window's own
    item(C::ShowPainting)->setCheckable(true);
    item(C::AllSettings)->setCheckable(true);
    setState({});
}

void EditMenus::add(QMenu *menu, MenuCommand command, const QList<QKeySequence> &keys)
{
    QAction *action = menu->addAction(QString(), this, [this, command] {
        setState(m_state); // a tick that the click has set is the screen's to set
        emit commandTapped(command, 0);
    });
    action->setShortcuts(keys);
    m_items.insert(command, action);
}

void EditMenus::setLocalizedStrings(Localisation &texts)
{
    const auto lookup = [&](const char *key) { return texts.getLocalizedStringForKey(QString::fromLatin1(key)); };
    using C = MenuCommand;
    menuEdit->setTitle(asTitle(lookup("EDIT")));
    menuBrush->setTitle(asTitle(lookup("TOOL_BRUSH")));
    menuView->setTitle(asTitle(lookup("VIEW")));
    const std::pair<C, QString> titles[] = {{C::PastePhoto, lookup("PASTE_PHOTO")},
                                            {C::Brush, lookup("TOOL_BRUSH")},
                                            {C::Eraser, lookup("TOOL_ERASER")},
                                            {C::BrushLarger, lookup("BRUSH_LARGER")},
                                            {C::BrushSmaller, lookup("BRUSH_SMALLER")},
                                            {C::BrushHarder, lookup("BRUSH_HARDER")},
                                            {C::BrushSofter, lookup("BRUSH_SOFTER")},
                                            {C::BlurEverything, lookup("BLUR_EVERYTHING")},
                                            {C::ClearPainting, lookup("CLEAR_PAINTING")},
                                            {C::SavePaintingAs, lookup("SAVE_PAINTING_AS")},
                                            {C::OpenPainting, lookup("OPEN_PAINTING")},
                                            {C::ForgetPaintings, lookup("FORGET_PAINTINGS")},
                                            {C::ShowPainting, lookup("SHOW_PAINTING")},
                                            {C::ZoomIn, lookup("ZOOM_IN")},
                                            {C::ZoomOut, lookup("ZOOM_OUT")},
                                            {C::ZoomFit, lookup("ZOOM_FIT_WINDOW")},
                                            {C::ZoomFull, lookup("ZOOM_FULL")},
                                            {C::AllSettings, lookup("ALL_SETTINGS")},
                                            {C::FullScreen, lookup("FULL_SCREEN_MODE")}};
    for (const auto &[command, title] : titles)
        item(command)->setText(asTitle(title));
    m_compare->setText(asTitle(lookup("COMPARE")));
    m_undo = lookup("UNDO");
    m_redo = lookup("REDO");
    setState(m_state);
}

void EditMenus::setState(const MenuState &state)
{
    const bool otherPaintings = state.storedPaintings != m_state.storedPaintings;
    m_state = state;
    using C = MenuCommand;
    for (auto entry = m_items.begin(); entry != m_items.end(); ++entry)
        entry.value()->setEnabled(state.mayEdit);
    const auto step = [this](C command, const QString &text, const QString &plain) {
        item(command)->setText(asTitle(text.isEmpty() ? plain : text));
        item(command)->setEnabled(!text.isEmpty());
    };
    step(C::Undo, state.undo, m_undo);
    step(C::Redo, state.redo, m_redo);
    item(C::PastePhoto)->setEnabled(state.mayOpen);
    for (const C command : {C::ZoomIn, C::ZoomOut, C::ZoomFit, C::ZoomFull})
        item(command)->setEnabled(state.hasPhoto);
    for (const C command : {C::ForgetPaintings, C::ShowPainting, C::AllSettings, C::FullScreen})
        item(command)->setEnabled(true);
    item(C::ShowPainting)->setChecked(state.showsPainting);
    item(C::AllSettings)->setChecked(state.showsAllSettings);
    if (otherPaintings)
        listStoredPaintings();
    for (QAction *painting : std::as_const(m_storedPaintings))
        painting->setEnabled(state.mayEdit);
}

void EditMenus::listStoredPaintings()
{
    qDeleteAll(std::exchange(m_storedPaintings, {}));
    for (int i = 0; i < m_state.storedPaintings.size(); ++i) {
        auto *action = new QAction(asTitle(m_state.storedPaintings[i]), this);
        connect(action, &QAction::triggered, this, [this, i] { emit commandTapped(MenuCommand::RestorePainting, i); });
        menuEdit->insertAction(item(MenuCommand::ForgetPaintings), action);
        m_storedPaintings.append(action);
    }
}

} // namespace hazelmark
