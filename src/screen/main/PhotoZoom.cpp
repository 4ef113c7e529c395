#include "PhotoZoom.h"

#include "BrushControls.h"
#include "DrawTrackingView.h"
#include "MainScreenView.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "Session.h"

#include <QCursor>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>

#include <cmath>

namespace hazelmark {

namespace {

/// What a wheel tells for one step of it.
constexpr double kAngleOfStep = 120;
/// How far such a step moves the photo.
constexpr double kPointsOfStep = 60;

} // namespace

PhotoZoom::PhotoZoom(MainScreenView &view, Session &session, std::function<CoreFilterObject()> settings)
    : QObject(&view)
    , m_view(view)
    , m_session(session)
    , m_settings(std::move(settings))
{
    connect(&session, &Session::viewDrawn, this, &PhotoZoom::pictureDrawn);
    connect(view.paintView, &PaintView::strokeBegan, this,
            [this] { m_session.painting().raiseScale(m_transform.zoom()); });
    connect(view.paintView, &PaintView::strokeEnded, this, &PhotoZoom::strokeEnded);
    for (QWidget *widget : std::initializer_list<QWidget *>{view.vwPreviewContainer, view.imgvwAfterBokesh,
                                                            view.drawTrackingView, view.paintView})
        widget->installEventFilter(this);
}

void PhotoZoom::setBrush(BrushControls *brush)
{
    m_brush = brush;
}

void PhotoZoom::setPlace(QSizeF photo, const QRectF &fitted)
{
    if (photo != m_wanted.place().photo)
        m_wanted.setFit();
    m_wanted.setPlace({photo, fitted, QSizeF(m_view.previewSize()), m_view.devicePixelRatioF()});
    m_transform = m_wanted;
    if (!m_transform.isFit())
        showNear();
    if (m_brush)
        m_brush->setZoom(m_transform.zoom());
    emit changed();
}

template <typename Change>
void PhotoZoom::change(const Change &change)
{
    if (m_session.state() == Session::State::Empty)
        return;
    change(m_wanted);
    if (!m_view.paintView->isStrokeUnderWay())
        apply();
}

void PhotoZoom::apply()
{
    if (m_wanted == m_transform)
        return;
    const bool otherZoom = m_wanted.zoom() != m_transform.zoom();
    m_transform = m_wanted;
    if (m_transform.isFit()) {
        m_session.leaveView();
        m_view.placePhoto(m_transform.place().fitted);
    } else {
        showNear();
    }
    if (otherZoom && m_brush)
        m_brush->setZoom(m_transform.zoom());
    emit changed();
}

void PhotoZoom::showNear()
{
    m_view.placeNear(m_transform.frame(), m_transform.visible());
    requestPicture();
}

void PhotoZoom::requestPicture()
{
    // Above 100 % it is the picture of 100 % that is enlarged.
    const QSize photo = m_transform.place().photo.toSize();
    QSize size = m_transform.pixels();
    QRect part = m_transform.visiblePixels();
    if (size.width() > photo.width() || size.height() > photo.height()) {
        const double x = double(photo.width()) / size.width();
        const double y = double(photo.height()) / size.height();
        part = QRectF(part.x() * x, part.y() * y, part.width() * x, part.height() * y).toAlignedRect();
        size = photo;
    }
    const QSizeF frame = m_view.paintView->frame().size();
    const double finest = ScaledPainting::largestScale(frame, m_transform.place().photo);
    m_session.requestView(size, part, std::min(m_transform.zoom(), finest), m_settings());
}

void PhotoZoom::refresh()
{
    if (!m_transform.isFit())
        requestPicture();
}

void PhotoZoom::pictureDrawn(const ViewPicture &picture)
{
    if (m_transform.isFit())
        return;
    m_view.imgvwAfterBokesh->setDetail({picture.shown, picture.size, picture.part, m_transform.place().photo.toSize()});
    if (!m_view.paintView->isStrokeUnderWay() || !picture.canvas.isNull())
        m_view.paintView->setCanvasPart(picture.canvas, *picture.steps);
}

void PhotoZoom::strokeEnded()
{
    apply();
}

void PhotoZoom::setFit()
{
    change([](ViewTransform &wanted) { wanted.setFit(); });
}

void PhotoZoom::setScale(double scale)
{
    change([&](ViewTransform &wanted) { wanted.setScale(scale, middle()); });
}

void PhotoZoom::zoomBySteps(double steps)
{
    const QPointF pointer = m_view.vwPreviewContainer->mapFromGlobal(QPointF(QCursor::pos()));
    const bool isOver = m_wanted.visible().contains(pointer);
    change([&](ViewTransform &wanted) { wanted.zoomBy(steps, isOver ? pointer : middle()); });
}

void PhotoZoom::panBy(QPointF points)
{
    change([&](ViewTransform &wanted) { wanted.panBy(points); });
}

void PhotoZoom::centreOn(QPointF fraction)
{
    change([&](ViewTransform &wanted) { wanted.centreOn(fraction); });
}

QPointF PhotoZoom::middle() const
{
    return QRectF(m_view.vwPreviewContainer->rect()).center();
}

// What comes from wheel, pad and mouse

bool PhotoZoom::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel:
        return handleWheel(watched, static_cast<QWheelEvent &>(*event));
    case QEvent::NativeGesture:
        return handleGesture(watched, static_cast<QNativeGestureEvent &>(*event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return handleMouse(watched, static_cast<QMouseEvent &>(*event));
    default:
        return QObject::eventFilter(watched, event);
    }
}

QPointF PhotoZoom::placeInView(const QObject *watched, QPointF position) const
{
    const auto *widget = static_cast<const QWidget *>(watched);
    return widget->mapTo(m_view.vwPreviewContainer, position);
}

bool PhotoZoom::handleWheel(const QObject *watched, const QWheelEvent &event)
{
    const QPointF place = placeInView(watched, event.position());
    if (event.modifiers() & Qt::ControlModifier) {
        const double steps = event.angleDelta().y() / kAngleOfStep;
        // A step of a wheel may stop at fit and 100 %; a pad tells small parts of steps.
        change([&](ViewTransform &wanted) { wanted.zoomBy(steps, place); });
        return true;
    }
    if (m_wanted.isFit())
        return false;
    QPointF move = event.pixelDelta().isNull() ? QPointF(event.angleDelta()) * (kPointsOfStep / kAngleOfStep)
                                               : QPointF(event.pixelDelta());
    if ((event.modifiers() & Qt::ShiftModifier) && move.x() == 0)
        move = move.transposed();
    panBy(move);
    return true;
}

bool PhotoZoom::handleGesture(const QObject *watched, const QNativeGestureEvent &event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    const QPointF place = placeInView(watched, event.position());
    change([&](ViewTransform &wanted) { wanted.setScale(wanted.scale() * (1 + event.value()), place); });
    return true;
}

/// The middle button holds the photo.
bool PhotoZoom::handleMouse(const QObject *watched, const QMouseEvent &event)
{
    if (event.type() == QEvent::MouseButtonPress && event.button() == Qt::MiddleButton && !m_draggedFrom) {
        m_draggedFrom = placeInView(watched, event.position());
        return true;
    }
    if (!m_draggedFrom)
        return false;
    if (event.type() == QEvent::MouseMove) {
        const QPointF place = placeInView(watched, event.position());
        panBy(place - *m_draggedFrom);
        m_draggedFrom = place;
        return true;
    }
    if (event.type() == QEvent::MouseButtonRelease && event.button() == Qt::MiddleButton)
        m_draggedFrom.reset();
    return true;
}

} // namespace hazelmark
