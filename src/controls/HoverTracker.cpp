#include "HoverTracker.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QWidget>

#include <utility>

namespace hazelmark {

bool HoverTracker::follow(const QEvent &event, const QWidget &control)
{
    const bool before = isHovering();
    switch (event.type()) {
    case QEvent::Show:
    case QEvent::Hide:
        m_appearing = event.type() == QEvent::Show;
        m_pointer = Pointer::Outside;
        break;
    case QEvent::Paint:
        if (std::exchange(m_appearing, false) && control.rect().contains(control.mapFromGlobal(QCursor::pos())))
            m_pointer = Pointer::AssumedInside;
        break;
    case QEvent::Enter:
        if (m_appearing)
            m_pointer = Pointer::AssumedInside;
        else if (m_pointer == Pointer::Outside && QGuiApplication::applicationState() == Qt::ApplicationActive)
            m_pointer = Pointer::Hovering;
        break;
    case QEvent::Leave:
        m_pointer = Pointer::Outside;
        break;
    default:
        break;
    }
    return isHovering() != before;
}

} // namespace hazelmark
