#pragma once

#include "MenuCommand.h"

#include <QHash>
#include <QList>
#include <QObject>

class QAction;
class QKeySequence;
class QMenu;
class QMenuBar;

namespace hazelmark {

class Localisation;

/// The Edit and the View menu. Their items say only what was chosen.
class EditMenus : public QObject
{
    Q_OBJECT

public:
    /// Appends the menus to `menuBar`, which owns them.
    explicit EditMenus(QMenuBar &menuBar);

    void setLocalizedStrings(Localisation &texts);
    /// A command that makes no sense now is disabled, its key with it.
    void setState(const MenuState &state);

    QAction *item(MenuCommand command) const { return m_items.value(command); }
    /// Those of the paintings that can be restored.
    const QList<QAction *> &storedPaintings() const { return m_storedPaintings; }

    QMenu *menuEdit = nullptr;
    QMenu *menuBrush = nullptr; ///< in the Edit menu
    QMenu *menuView = nullptr;

signals:
    void commandTapped(MenuCommand command, int index);

private:
    void add(QMenu *menu, MenuCommand command, const QList<QKeySequence> &keys);
    void listStoredPaintings();

    QHash<MenuCommand, QAction *> m_items;
    QList<QAction *> m_storedPaintings;
    QAction *m_compare = nullptr;
    MenuState m_state;
    QString m_undo; ///< without a step
    QString m_redo;
};

} // namespace hazelmark
