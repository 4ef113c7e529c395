#include "PointerTracker.h"

#include "ProcessState.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QWidget>

#include <chrono>

namespace hazelmark {

namespace {
constexpr std::chrono::milliseconds kPollInterval{100};
}

PointerTracker::PointerTracker(QWidget &area, Handler entered, Handler exited, Test isStrokeUnderWay)
    : QObject(&area)
    , m_area(area)
    , m_entered(std::move(entered))
    , m_exited(std::move(exited))
    , m_isStrokeUnderWay(std::move(isStrokeUnderWay))
{
    area.installEventFilter(this);
    m_poll.setInterval(kPollInterval);
    connect(&m_poll, &QTimer::timeout, this, &PointerTracker::check);
}

bool PointerTracker::isPointerInside() const
{
    return !m_hasLeftWindow && m_area.rect().contains(m_area.mapFromGlobal(QCursor::pos()));
}

bool PointerTracker::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
        if (watched == &m_area)
            areaShown();
        break;
    case QEvent::Hide:
        if (watched == &m_area)
            areaHidden();
        break;
    case QEvent::Enter:
        m_hasLeftWindow = false;
        QTimer::singleShot(0, this, &PointerTracker::check);
        break;
    case QEvent::Leave:
        if (watched == m_window)
            m_hasLeftWindow = true;
        QTimer::singleShot(0, this, &PointerTracker::check);
        break;
    default:
        break;
    }
    return false;
}

void PointerTracker::areaShown()
{
    if (m_window != m_area.window()) {
        if (m_window && m_window != &m_area)
            m_window->removeEventFilter(this);
        m_window = m_area.window();
        m_window->installEventFilter(this);
    }
    m_state = State::AssumedInside;
    m_placeWhenShown = QCursor::pos();
    m_poll.start();
    QTimer::singleShot(0, this, &PointerTracker::check);
}

void PointerTracker::areaHidden()
{
    m_state = State::Outside;
    m_poll.stop();
}

void PointerTracker::check()
{
    if (!m_area.isVisible() || QGuiApplication::mouseButtons() != Qt::NoButton || m_isStrokeUnderWay())
        return;
    const bool inside = isPointerInside();
    if (inside && m_state != State::Inside && ProcessState::shared().isAppActive) {
        m_state = State::Inside;
        m_entered();
    } else if (!inside &&
               (m_state == State::Inside || (m_state == State::AssumedInside && QCursor::pos() != m_placeWhenShown))) {
        m_state = State::Outside;
        m_exited();
    }
}

} // namespace hazelmark
