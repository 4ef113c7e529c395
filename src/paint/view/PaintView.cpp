#include "PaintView.h"

#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PointerTracker.h"
#include "ProcessState.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QInputDevice>
#include <QLineF>
#include <QMouseEvent>
#include <QPainter>
#include <QTabletEvent>
#include <QTimer>
#include <QTouchEvent>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace hazelmark {

namespace {
constexpr std::chrono::milliseconds kCursorPollInterval{100};
/// In points. A file may hold steps of any size, and a replay leaves that of its last one behind for a moment.
constexpr float kLargestCircle = 2048;
/// A finger that has moved no farther may still be one of two.
constexpr double kDabPoints = 12;
} // namespace

PaintView::PaintView(QWidget *parent)
    : QWidget(parent)
{
    // Only one widget of the process wants every move, but the setting is the process's.
    QCoreApplication::setAttribute(Qt::AA_CompressHighFrequencyEvents, false);
    setAttribute(Qt::WA_AcceptTouchEvents);
    new PointerTracker(
        *this, [this] { mouseEntered(); }, [this] { mouseExited(); }, [this] { return isStrokeUnderWay(); });
    followGeometry();
}

void PaintView::setFrame(const QRectF &frame)
{
    m_frame = m_whole = m_visible = frame;
    m_zoom = 1;
    m_part = {};
    setGeometry(frame.toAlignedRect());
    setCanvasSize(frame.size());
    update();
}

void PaintView::setShown(const QRectF &whole, const QRectF &visible)
{
    m_whole = whole;
    m_visible = visible;
    m_zoom = std::max(whole.width() / m_frame.width(), whole.height() / m_frame.height());
    setGeometry(visible.toAlignedRect());
    update();
}

void PaintView::setCanvasPart(const CanvasPart &part, const PaintStepList &steps)
{
    if (!part.isOf(*arrDrawedPoints(), steps))
        return;
    m_part = part;
    m_part.drawOn(*arrDrawedPoints(), 1);
    update();
}

void PaintView::followGeometry()
{
    if (geometry() != m_visible.toAlignedRect()) {
        m_frame = m_whole = m_visible = geometry();
        m_zoom = 1;
        setCanvasSize(m_frame.size());
    }
}

void PaintView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    followGeometry();
}

void PaintView::moveEvent(QMoveEvent *event)
{
    QWidget::moveEvent(event);
    followGeometry();
}

QPointF PaintView::frameOffset() const
{
    return m_whole.topLeft() - geometry().topLeft();
}

/// A place in the view as a point of the canvas's frame. What lies beside the part in sight lies beside the canvas.
QPointF PaintView::canvasPoint(QPointF position) const
{
    if (m_whole == m_frame && m_visible == m_frame)
        return position - frameOffset();
    const QPointF place = position + geometry().topLeft();
    const auto along = [](double at, double first, double last, double begin, double length, double canvas) {
        if (at < first)
            return at - first;
        return at > last ? canvas + (at - last) : (at - begin) * (canvas / length);
    };
    return {along(place.x(), m_visible.left(), m_visible.right(), m_whole.left(), m_whole.width(), m_frame.width()),
            along(place.y(), m_visible.top(), m_visible.bottom(), m_whole.top(), m_whole.height(), m_frame.height())};
}

/// Where a rectangle of a canvas of that size is shown, in points of the view.
QRectF PaintView::shownRect(const QRectF &canvasRect, QSizeF canvas) const
{
    const double columns = m_whole.width() / canvas.width();
    const double lines = m_whole.height() / canvas.height();
    const QRectF shown(canvasRect.x() * columns, canvasRect.y() * lines, canvasRect.width() * columns,
                       canvasRect.height() * lines);
    return shown.translated(frameOffset());
}

void PaintView::setOpacity(double opacity)
{
    m_opacity = opacity;
    update();
}

void PaintView::paintEvent(QPaintEvent *event)
{
    if (arrDrawedPoints()->empty())
        clearBuffer();
    if (buffer().isNull())
        return;
    QPainter painter(this);
    painter.setOpacity(m_opacity);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (m_part.isNull()) {
        painter.drawImage(QRectF(frameOffset(), m_whole.size()), buffer());
        return;
    }
    const QRectF part = shownRect(m_part.rect(), CanvasPart::canvasSize(m_part.frame(), m_part.scale()));
    // Whole points, so that nothing is drawn twice.
    const QRect fine(QPoint(int(std::ceil(part.left())), int(std::ceil(part.top()))),
                     QPoint(int(std::floor(part.right())) - 1, int(std::floor(part.bottom())) - 1));
    const QRegion coarse = event->region() - fine;
    if (!coarse.isEmpty()) {
        painter.setClipRegion(coarse);
        painter.drawImage(QRectF(frameOffset(), m_whole.size()), buffer());
    }
    if (!m_part.pixels().isNull()) {
        painter.setClipRect(fine);
        drawPart(painter, part);
    }
}

/// Pixel for pixel where its pixels are the screen's, to within half of one over all of it: scaling takes longer than
/// all the rest.
void PaintView::drawPart(QPainter &painter, const QRectF &target) const
{
    const double ratio = devicePixelRatioF();
    const QSizeF beyond = target.size() * ratio - QSizeF(m_part.pixels().size());
    if (std::abs(beyond.width()) >= 0.5 || std::abs(beyond.height()) >= 0.5) {
        painter.drawImage(target, m_part.pixels());
        return;
    }
    QImage pixels = m_part.pixels();
    pixels.setDevicePixelRatio(ratio);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(QPointF(std::round(target.x() * ratio), std::round(target.y() * ratio)) / ratio, pixels);
}

void PaintView::bufferChanged(const QRect &rect)
{
    const QSize pixels = bufferSize();
    if (pixels.isEmpty()) {
        update();
        return;
    }
    if (!m_part.isNull()) {
        // A change of all of it is a new drawing; a stamp that reaches as far is drawn again with the next part.
        if (rect.contains(QRect(QPoint(), pixels)) || m_part.stepCount() > arrDrawedPoints()->size())
            m_part = {};
        else
            m_part.drawOn(*arrDrawedPoints(), 1);
    }
    // One point more on each side: scaling mixes neighbours.
    const int more = int(std::ceil(std::max(m_zoom, 1.0)));
    update(shownRect(rect, pixels).toAlignedRect().adjusted(-more, -more, more, more));
}

// Strokes

bool PaintView::beginStroke(Stroke stroke, QPointF position)
{
    if (m_stroke != Stroke::None)
        return false;
    m_stroke = stroke;
    emit strokeBegan();
    mouseDown(canvasPoint(position));
    return true;
}

bool PaintView::continueStroke(Stroke stroke, QPointF position)
{
    if (m_stroke != stroke)
        return false;
    mouseDragged(canvasPoint(position));
    return true;
}

bool PaintView::endStroke(Stroke stroke)
{
    if (stroke == Stroke::None || m_stroke != stroke)
        return false;
    m_stroke = Stroke::None;
    mouseUp();
    emit strokeEnded();
    return true;
}

void PaintView::finishStroke()
{
    endStroke(m_stroke);
}

void PaintView::showEvent(QShowEvent *event)
{
    if (m_window != window()) {
        if (m_window)
            m_window->removeEventFilter(this);
        m_window = window();
        m_window->installEventFilter(this);
    }
    QWidget::showEvent(event);
}

void PaintView::hideEvent(QHideEvent *event)
{
    finishStroke();
    QWidget::hideEvent(event);
}

void PaintView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange && !isEnabled())
        finishStroke();
    QWidget::changeEvent(event);
}

bool PaintView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_window && event->type() == QEvent::WindowBlocked)
        finishStroke();
    return QWidget::eventFilter(watched, event);
}

void PaintView::mousePressEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton && beginStroke(Stroke::Mouse, event->position()));
}

void PaintView::mouseMoveEvent(QMouseEvent *event)
{
    event->setAccepted(continueStroke(Stroke::Mouse, event->position()));
}

void PaintView::mouseReleaseEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton && endStroke(Stroke::Mouse));
}

void PaintView::tabletEvent(QTabletEvent *event)
{
    // What is not accepted comes again as a mouse event.
    switch (event->type()) {
    case QEvent::TabletPress:
        event->setAccepted(event->button() == Qt::LeftButton && beginStroke(Stroke::Pen, event->position()));
        break;
    case QEvent::TabletMove:
        event->setAccepted(continueStroke(Stroke::Pen, event->position()));
        break;
    case QEvent::TabletRelease:
        event->setAccepted(event->button() == Qt::LeftButton && endStroke(Stroke::Pen));
        break;
    default:
        event->ignore();
    }
}

bool PaintView::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        if (handleTouch(static_cast<QTouchEvent &>(*event))) {
            event->accept();
            return true;
        }
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

bool PaintView::takeBackDab()
{
    if (m_stroke != Stroke::Touch || !m_isDab)
        return false;
    m_stroke = Stroke::None;
    paintSession()->takeSteps(m_stepsBefore);
    setPixels(std::exchange(m_pixelsBefore, {}), QRect(QPoint(), bufferSize()));
    emit strokeTakenBack();
    return true;
}

bool PaintView::handleTouch(QTouchEvent &event)
{
    // A touch pad moves the pointer.
    if (event.device()->type() != QInputDevice::DeviceType::TouchScreen)
        return false;
    if (event.type() == QEvent::TouchCancel) {
        endStroke(Stroke::Touch);
        return true;
    }
    for (const QEventPoint &point : event.points()) {
        if (point.state() == QEventPoint::Pressed && m_stroke == Stroke::None) {
            m_finger = point.id();
            m_touchedAt = point.position();
            m_isDab = true;
            m_stepsBefore = arrDrawedPoints()->size();
            m_pixelsBefore = buffer();
            beginStroke(Stroke::Touch, point.position());
        } else if (point.id() == m_finger && point.state() == QEventPoint::Updated) {
            if (m_isDab && QLineF(m_touchedAt, point.position()).length() > kDabPoints) {
                m_isDab = false;
                m_pixelsBefore = {};
            }
            continueStroke(Stroke::Touch, point.position());
        } else if (point.id() == m_finger && point.state() == QEventPoint::Released) {
            m_pixelsBefore = {};
            endStroke(Stroke::Touch);
        }
    }
    return true;
}

// The cursor

QImage PaintView::cursorImage() const
{
    const double scale = devicePixelRatioF();
    const double size = shownPointSize();
    const int side = int(std::ceil((size + 1) * scale));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 1));
    painter.drawEllipse(QRectF(1, 1, size - 1, size - 1));
    painter.setPen(QPen(eraser() ? QColor(Qt::red) : QColor(Qt::green), 1));
    painter.drawEllipse(QRectF(2, 2, size - 3, size - 3));
    return image;
}

void PaintView::setBrushCursor(float hotSpot)
{
    const CursorKey wanted{shownPointSize(), hotSpot, eraser(), devicePixelRatioF(), cursor().pixmap().cacheKey()};
    if (wanted == m_cursorKey || !(wanted.pointSize <= kLargestCircle))
        return;
    QPixmap circle = QPixmap::fromImage(cursorImage());
    double pixels = hotSpot;
    if (QGuiApplication::platformName() == u"xcb") {
        // Qt hands image and hot spot to the X server as they are: there both count in pixels.
        pixels *= circle.devicePixelRatio();
        circle.setDevicePixelRatio(1);
    }
    const int place = int(std::lround(pixels));
    setCursor(QCursor(circle, place, place));
    m_cursorKey = wanted;
    m_cursorKey.pixmap = cursor().pixmap().cacheKey();
}

void PaintView::mouseEntered()
{
    checkMouseCursor();
    if (ProcessState::shared().isUiDisabled) {
        setCursor(Qt::ArrowCursor);
        return;
    }
    // The hot spot is the full size here and half of it in the poll: two separate values.
    setBrushCursor(float(shownPointSize()));
    NotificationCenter::defaultCenter().post(kNotificationMouseIn);
}

void PaintView::mouseExited()
{
    setCursor(Qt::ArrowCursor);
    NotificationCenter::defaultCenter().post(kNotificationMouseout);
    delete std::exchange(m_mouseTimer, nullptr);
}

void PaintView::checkMouseCursor()
{
    m_mouseTimer = new QTimer(this);
    connect(m_mouseTimer, &QTimer::timeout, this, &PaintView::checkMouseAfterDelay);
    m_mouseTimer->start(kCursorPollInterval);
}

void PaintView::checkMouseAfterDelay()
{
    const bool isOver = rect().contains(mapFromGlobal(QCursor::pos()));
    if (!isOver || !ProcessState::shared().isAppActive || !isActiveWindow())
        return;
    if (ProcessState::shared().isUiDisabled)
        setCursor(Qt::ArrowCursor);
    else
        setBrushCursor(0.5F * float(shownPointSize()));
}

} // namespace hazelmark
