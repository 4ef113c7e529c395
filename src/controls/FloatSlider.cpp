#include "FloatSlider.h"

#include "AccessibleValue.h"
#include "FocusRing.h"
#include "Theme.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

constexpr qreal kKnobWidth = 20;
constexpr qreal kKnobHeight = 22;
constexpr qreal kBarHeight = 5;
constexpr int kPreferredWidth = 120;
constexpr int kHeight = 21; // odd, so that track and knob have a row of pixels as their middle
constexpr double kPageSteps = 10;
constexpr double kWheelNotch = 120; // eighths of a degree
constexpr qreal kDisabledOpacity = 0.4;
constexpr int kFrameMilliseconds = 16; // of a screen that shows 60 a second

} // namespace

FloatSlider::FloatSlider(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    installAccessibleValues();
}

void FloatSlider::setRange(double minValue, double maxValue)
{
    m_minValue = minValue;
    m_maxValue = std::max(minValue, maxValue);
    setValue(m_value);
    update();
}

void FloatSlider::setValue(double value)
{
    const double inRange = value > m_minValue ? std::min(value, m_maxValue) : m_minValue; // not-a-number: the minimum
    if (inRange == m_value)
        return;
    m_value = inRange;
    announceValue(*this, m_value);
    update();
}

double FloatSlider::fraction() const
{
    return m_maxValue > m_minValue ? (m_value - m_minValue) / (m_maxValue - m_minValue) : 0;
}

double FloatSlider::singleStep() const
{
    constexpr double kShortRange = 10;
    const double range = m_maxValue - m_minValue;
    return range < kShortRange ? range / 100 : 1;
}

void FloatSlider::stepBy(double steps)
{
    setValueByUser(m_value + steps * singleStep());
}

void FloatSlider::setValueByUser(double value)
{
    const double before = m_value;
    setValue(value);
    if (m_value != before)
        emit valueChangedByUser(m_value);
}

QSize FloatSlider::sizeHint() const
{
    return {kPreferredWidth, kHeight};
}

QSize FloatSlider::minimumSizeHint() const
{
    return {static_cast<int>(3 * kKnobWidth), kHeight};
}

void FloatSlider::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return stepBy(-1);
    case Qt::Key_Right:
    case Qt::Key_Up:
        return stepBy(1);
    case Qt::Key_PageDown:
        return stepBy(-kPageSteps);
    case Qt::Key_PageUp:
        return stepBy(kPageSteps);
    case Qt::Key_Home:
        return setValueByUser(m_minValue);
    case Qt::Key_End:
        return setValueByUser(m_maxValue);
    default:
        QWidget::keyPressEvent(event);
    }
}

void FloatSlider::wheelEvent(QWheelEvent *event)
{
    const QPoint angle = event->angleDelta();
    const int delta = angle.y() != 0 ? angle.y() : -angle.x();
    if (!hasFocus() || delta == 0) {
        event->ignore();
        return;
    }
    stepBy(delta / kWheelNotch);
    event->accept();
}

QRectF FloatSlider::knobRect() const
{
    const qreal middle = std::floor(height() / 2.0) + 0.5;
    return {fraction() * (width() - kKnobWidth), middle - kKnobHeight / 2, kKnobWidth, kKnobHeight};
}

QRectF FloatSlider::barRect() const
{
    const qreal middle = std::floor(height() / 2.0) + 0.5;
    return {kTrackInset, middle - kBarHeight / 2, width() - 2 * kTrackInset, kBarHeight};
}

void FloatSlider::dragTo(qreal x)
{
    const qreal way = width() - kKnobWidth;
    if (way > 0)
        setValueByUser(m_minValue + (x - kKnobWidth / 2) / way * (m_maxValue - m_minValue));
}

void FloatSlider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_dragging = true;
    const qreal x = event->position().x();
    if (knobRect().contains(QPointF(x, height() / 2.0))) {
        m_grip = x - knobRect().center().x(); // taking hold of the knob moves nothing yet
    } else {
        m_grip = 0;
        dragTo(x);
    }
}

void FloatSlider::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging)
        return;
    m_lastMove = event->position().x() - m_grip;
    if (!m_frame.isActive()) {
        m_frame.start(kFrameMilliseconds, Qt::PreciseTimer, this);
        takeLastMoveIfIdle();
    }
}

void FloatSlider::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_frame.timerId())
        return QWidget::timerEvent(event);
    if (m_lastMove)
        takeLastMoveIfIdle();
    else
        m_frame.stop();
}

void FloatSlider::takeLastMove()
{
    if (const std::optional<qreal> x = std::exchange(m_lastMove, std::nullopt))
        dragTo(*x);
}

void FloatSlider::takeLastMoveIfIdle()
{
    if (!m_isBusy || !m_isBusy())
        takeLastMove();
}

void FloatSlider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        takeLastMove();
        endDrag();
    }
}

void FloatSlider::endDrag()
{
    m_dragging = false;
    m_lastMove.reset();
    m_frame.stop();
}

void FloatSlider::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange)
        endDrag();
    QWidget::changeEvent(event);
}

void FloatSlider::paintEvent(QPaintEvent *)
{
    constexpr qreal kFocusMargin = 3.5;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : kDisabledOpacity);
    m_cell.drawBarInside(painter, barRect());
    m_cell.drawKnob(painter, knobRect());
    if (showsKeyboardFocus(*this)) {
        painter.setPen(QPen(theme::kFocus, theme::kFocusRingWidth));
        painter.setBrush(Qt::NoBrush);
        const qreal inset = (kKnobWidth - 11.0) / 2 - kFocusMargin;
        painter.drawEllipse(knobRect().adjusted(inset, inset + 1, -inset, -inset - 1));
    }
}

} // namespace hazelmark
