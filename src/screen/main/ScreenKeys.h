#pragma once

#include <QObject>

class QKeyEvent;
class QWheelEvent;

namespace hazelmark {

class CanvasSight;
class EditCommands;
class MainScreenView;

/// What no menu's key can be: a key that is held, the wheel with Alt over the photo, and where Tab begins.
class ScreenKeys : public QObject
{
    Q_OBJECT

public:
    /// Listens to what no control of `window` had a use for. All outlive it.
    ScreenKeys(MainScreenView &view, QWidget &window, EditCommands &commands, CanvasSight &sight);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool isHoldKey(const QKeyEvent &event) const;
    bool beginTabs();
    bool turnWheel(const QWheelEvent &event);

    MainScreenView &m_view;
    QWidget &m_window;
    EditCommands &m_commands;
    CanvasSight &m_sight;
    bool m_isHeld = false;
    int m_wheel = 0; ///< what of a notch has been turned
};

} // namespace hazelmark
