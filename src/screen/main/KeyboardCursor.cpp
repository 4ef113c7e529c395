#include "KeyboardCursor.h"

#include "FocusRing.h"
#include "PaintView.h"

#include <QAccessibleWidget>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <utility>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kBrushPollInterval{100};
constexpr int kFar = 10; ///< with Shift

QPointF direction(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {};
    }
}

/// A canvas, whose value is what of it is painted, in per cent.
class CanvasInterface : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit CanvasInterface(KeyboardCursor &cursor)
        : QAccessibleWidget(&cursor, QAccessible::Canvas)
        , m_cursor(cursor)
    {
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return 100 * m_cursor.painted(); }
    QVariant minimumValue() const override { return 0.0; }
    QVariant maximumValue() const override { return 100.0; }
    QVariant minimumStepSize() const override { return 0.0; }
    void setCurrentValue(const QVariant &) override {}

private:
    KeyboardCursor &m_cursor;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *cursor = qobject_cast<KeyboardCursor *>(object);
    return cursor ? new CanvasInterface(*cursor) : nullptr;
}

} // namespace

KeyboardCursor::KeyboardCursor(PaintView &canvas, QWidget *parent)
    : QWidget(parent)
    , m_canvas(canvas)
    , m_brushPoll(new QTimer(this))
{
    QAccessible::installFactory(makeInterface);
    setObjectName(QStringLiteral("keyboardCursor"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::TabFocus);
    m_brushPoll->setInterval(kBrushPollInterval);
    connect(m_brushPoll, &QTimer::timeout, this, &KeyboardCursor::followBrush);
}

void KeyboardCursor::setPainted(double fraction, const QString &description)
{
    m_painted = fraction;
    setAccessibleDescription(description);
    QAccessibleValueChangeEvent changed(this, 100 * fraction);
    QAccessible::updateAccessibility(&changed);
}

void KeyboardCursor::showCircle()
{
    if (m_isShown)
        return;
    m_isShown = true;
    m_brushPoll->start();
    moveBy({});
    emit circleChanged();
}

void KeyboardCursor::hideCircle()
{
    if (!m_isShown)
        return;
    endStroke();
    m_isShown = m_hasMoved = false;
    m_brushPoll->stop();
    update();
    emit circleChanged();
}

/// Steps with an end outside the frame are not drawn: the circle's centre stays inside.
void KeyboardCursor::moveBy(QPointF way)
{
    const QRectF seen = m_canvas.visibleFrame();
    const QPointF wanted =
        seen.topLeft() + QPointF(m_fraction.x() * seen.width(), m_fraction.y() * seen.height()) + way;
    m_place = {std::clamp(wanted.x(), seen.left(), std::max(seen.left(), seen.right())),
               std::clamp(wanted.y(), seen.top(), std::max(seen.top(), seen.bottom()))};
    if (!seen.isEmpty())
        m_fraction = {(m_place.x() - seen.left()) / seen.width(), (m_place.y() - seen.top()) / seen.height()};
    if (m_isPainting)
        m_canvas.continueKeyStroke(m_place);
    update();
}

void KeyboardCursor::endStroke()
{
    if (std::exchange(m_isPainting, false))
        m_canvas.endKeyStroke();
}

void KeyboardCursor::followBrush()
{
    if (m_canvas.pointSize() * m_canvas.zoom() != m_drawnSize || m_canvas.eraser() != m_drawnEraser)
        update();
}

bool KeyboardCursor::event(QEvent *event)
{
    // Keys of the circle, also where a shortcut has them.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (!direction(key->key()).isNull() || key->key() == Qt::Key_Space) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void KeyboardCursor::keyPressEvent(QKeyEvent *event)
{
    const QPointF way = direction(event->key());
    const bool isPlain = !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    if (!way.isNull() && isPlain) {
        showCircle();
        m_hasMoved = true;
        moveBy(way * kStepPoints * (event->modifiers() & Qt::ShiftModifier ? kFar : 1));
    } else if (event->key() == Qt::Key_Space && isPlain && m_hasMoved) { // else it holds the photo for the mouse
        if (!event->isAutoRepeat() && !m_isPainting)
            m_isPainting = m_canvas.beginKeyStroke(m_place);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void KeyboardCursor::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Space)
        QWidget::keyReleaseEvent(event);
    else if (!event->isAutoRepeat())
        endStroke();
}

void KeyboardCursor::focusInEvent(QFocusEvent *event)
{
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        showCircle();
    update();
}

void KeyboardCursor::focusOutEvent(QFocusEvent *)
{
    hideCircle();
    update();
}

void KeyboardCursor::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_isShown && !m_isPainting)
        moveBy({});
}

void KeyboardCursor::hideEvent(QHideEvent *event)
{
    hideCircle();
    QWidget::hideEvent(event);
}

void KeyboardCursor::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_isShown) {
        m_drawnSize = m_canvas.pointSize() * m_canvas.zoom();
        m_drawnEraser = m_canvas.eraser();
        const QImage circle = m_canvas.cursorImage();
        const double side = circle.width() / circle.devicePixelRatio();
        painter.drawImage(m_place - QPointF(side, side) / 2, circle);
    }
    drawFocusRing(painter, *this);
}

} // namespace hazelmark
