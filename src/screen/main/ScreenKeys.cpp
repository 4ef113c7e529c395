#include "ScreenKeys.h"

#include "CanvasSight.h"
#include "DrawTrackingView.h"
#include "EditCommands.h"
#include "IMGButton.h"
#include "KeyboardCursor.h"
#include "MainScreenView.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QWheelEvent>

#include <cstdlib>
#include <initializer_list>
#include <utility>

namespace hazelmark {

namespace {
constexpr int kWheelNotch = 120; // eighths of a degree
}

ScreenKeys::ScreenKeys(MainScreenView &view, QWidget &window, EditCommands &commands, CanvasSight &sight)
    : m_view(view)
    , m_window(window)
    , m_commands(commands)
    , m_sight(sight)
{
    window.installEventFilter(this);
    for (QWidget *widget : std::initializer_list<QWidget *>{view.vwPreviewContainer, view.imgvwAfterBokesh,
                                                            view.drawTrackingView, view.paintView})
        widget->installEventFilter(this);
}

bool ScreenKeys::isHoldKey(const QKeyEvent &event) const
{
    const bool isPlain = !(event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    return event.key() == Qt::Key_C && isPlain && m_view.vwBottom->isVisible();
}

bool ScreenKeys::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (watched != &m_window)
            break;
        if (key->key() == Qt::Key_Tab && beginTabs())
            return true;
        if (!isHoldKey(*key))
            break;
        if (!key->isAutoRepeat()) {
            m_isHeld = true;
            m_sight.setComparing(true);
        }
        return true;
    }
    case QEvent::KeyRelease: {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_C && !key->isAutoRepeat() && std::exchange(m_isHeld, false))
            m_sight.setComparing(false);
        break;
    }
    case QEvent::WindowDeactivate: // the release of the key goes elsewhere
        if (watched == &m_window && std::exchange(m_isHeld, false))
            m_sight.setComparing(false);
        break;
    case QEvent::MouseButtonPress:
        if (watched == m_view.paintView) {
            m_sight.setComparing(false);
            m_view.keyboardCursor->hideCircle();
            // What is typed from now on is for the painting, not for the number that was typed last.
            if (qobject_cast<QLineEdit *>(m_window.focusWidget()))
                m_window.setFocus(Qt::MouseFocusReason);
        }
        break;
    case QEvent::Wheel:
        return watched != &m_window && turnWheel(*static_cast<QWheelEvent *>(event));
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

/// Where nothing has the focus yet, Tab begins at the tool in force.
bool ScreenKeys::beginTabs()
{
    const QWidget *focus = m_window.focusWidget();
    if ((focus && focus != &m_window) || !m_view.vwSettingOptions || !m_view.vwSettingOptions->isVisible())
        return false;
    m_view.vwSettingOptions->toolInForce()->setFocus(Qt::TabFocusReason);
    return true;
}

bool ScreenKeys::turnWheel(const QWheelEvent &event)
{
    if (!(event.modifiers() & Qt::AltModifier))
        return false;
    // With Alt held the toolkit turns the wheel on its side.
    m_wheel += event.angleDelta().x() + event.angleDelta().y();
    for (; std::abs(m_wheel) >= kWheelNotch; m_wheel -= m_wheel > 0 ? kWheelNotch : -kWheelNotch)
        m_commands.perform(m_wheel > 0 ? MenuCommand::BrushLarger : MenuCommand::BrushSmaller);
    return true;
}

} // namespace hazelmark
