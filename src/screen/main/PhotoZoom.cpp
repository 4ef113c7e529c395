#include "PhotoZoom.h"

#include "BrushControls.h"
#include "DrawTrackingView.h"
#include "MainScreenView.h"
#include "OverviewView.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "Session.h"
#include "SummaryBar.h"
#include "ZoomField.h"

#include <QCursor>
#include <QGuiApplication>
#include <QInputDevice>
#include <QKeyEvent>
#include <QLineF>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <utility>

namespace hazelmark {

namespace {

/// What a wheel tells for one step of it.
constexpr double kAngleOfStep = 120;
/// How far such a step moves the photo.
constexpr double kPointsOfStep = 60;
/// So many arrow keys go across what is in sight.
constexpr int kKeysAcross = 8;
constexpr int kOverviewMargin = 12;
/// Two frames of a screen.
constexpr std::chrono::milliseconds kPatience{33};

} // namespace

PhotoZoom::PhotoZoom(MainScreenView &view, Session &session, std::function<CoreFilterObject()> settings)
    : QObject(&view)
    , m_view(view)
    , m_session(session)
    , m_settings(std::move(settings))
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(kPatience);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_isBehind = true;
        m_view.vwPreviewContainer->setUpdatesEnabled(true);
    });
    connect(&session, &Session::viewDrawn, this, &PhotoZoom::pictureDrawn);
    connect(&session, &Session::inputDrawn, view.overview, &OverviewView::setImage);
    connect(&session, &Session::previewRendered, view.overview, [&view](const QImage &shown) {
        if (!shown.isNull())
            view.overview->setImage(shown);
    });
    connect(&session.fullPhoto(), &FullPhoto::changed, this,
            [this] { emit readingChanged(m_session.fullPhoto().isDecoding()); });
    connect(&session.fullPhoto(), &FullPhoto::progressed, this, &PhotoZoom::readingProgressed);
    connect(view.paintView, &PaintView::strokeBegan, this,
            [this] { m_session.painting().raiseScale(m_transform.zoom()); });
    connect(view.paintView, &PaintView::strokeEnded, this, &PhotoZoom::apply);
    connect(view.paintView, &PaintView::strokeTakenBack, this, [this] {
        m_session.painting().lowerScale(m_transform.zoom());
        refresh();
    });
    connect(view.overview, &OverviewView::placeWanted, this, &PhotoZoom::centreOn);
    connect(view.vwBottom->zoomField(), &ZoomField::fitWanted, this, &PhotoZoom::setFit);
    connect(view.vwBottom->zoomField(), &ZoomField::scaleWanted, this, &PhotoZoom::setScale);
    for (QWidget *widget : std::initializer_list<QWidget *>{view.vwPreviewContainer, view.imgvwAfterBokesh,
                                                            view.drawTrackingView, view.paintView, view.overview})
        widget->installEventFilter(this);
}

void PhotoZoom::setBrush(BrushControls *brush)
{
    m_brush = brush;
}

void PhotoZoom::setWindow(QWidget &window)
{
    m_window = &window;
    window.installEventFilter(this);
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
    showParts();
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
        m_patience.stop();
        m_waiting.invalidate();
        m_isBehind = false;
        m_view.vwPreviewContainer->setUpdatesEnabled(true);
        m_session.leaveView();
        m_view.placePhoto(m_transform.place().fitted);
    } else {
        showNear();
    }
    if (otherZoom && m_brush)
        m_brush->setZoom(m_transform.zoom());
    showParts();
}

/// The field, and the overview in the corner.
void PhotoZoom::showParts()
{
    m_view.vwBottom->zoomField()->setScale(m_transform.scale());
    OverviewView *overview = m_view.overview;
    overview->setVisible(m_transform.isCut());
    if (m_transform.isCut()) {
        const QRectF whole = m_transform.frame();
        const QRectF seen = m_transform.visible();
        overview->setPart(m_transform.place().photo,
                          {(seen.x() - whole.x()) / whole.width(), (seen.y() - whole.y()) / whole.height(),
                           seen.width() / whole.width(), seen.height() / whole.height()});
        const QSize view = m_view.previewSize();
        overview->move(view.width() - overview->width() - kOverviewMargin,
                       view.height() - overview->height() - kOverviewMargin);
    }
    emit changed();
}

void PhotoZoom::showNear()
{
    // What there is moves when its sharp picture has come, or that takes too long; at once, if the last one did.
    if (!m_isBehind && !m_patience.isActive()) {
        m_view.vwPreviewContainer->setUpdatesEnabled(false);
        m_patience.start();
    }
    if (!m_waiting.isValid())
        m_waiting.start();
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
    CoreFilterObject settings = m_settings();
    if (m_view.imgvwAfterBokesh->isHidden()) // the photo as it was is looked at
        settings.blurAmount = 0.0F;
    m_session.requestView(size, part, std::min(m_transform.zoom(), finest), settings);
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
    PhotoImageView *view = m_view.imgvwAfterBokesh->isHidden() ? m_view.imgvwBeforeBokesh : m_view.imgvwAfterBokesh;
    view->setDetail({picture.shown, picture.size, picture.part, m_transform.place().photo.toSize()});
    m_view.paintView->setCanvasPart(picture.canvas, *picture.steps);
    m_patience.stop();
    m_view.vwPreviewContainer->setUpdatesEnabled(true);
    if (m_waiting.isValid())
        m_isBehind = m_waiting.hasExpired(kPatience.count());
    m_waiting.invalidate();
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
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        return handleTouch(watched, static_cast<QTouchEvent &>(*event));
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return watched == m_window && handleKey(static_cast<QKeyEvent &>(*event));
    case QEvent::WindowDeactivate:
        holdPhoto(false);
        return false;
    case QEvent::HideToParent: // comparing begins or ends
    case QEvent::ShowToParent:
        if (watched == m_view.imgvwAfterBokesh) {
            m_view.imgvwBeforeBokesh->setDetail({});
            refresh();
        }
        return false;
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
    if (watched == m_window || (event.modifiers() & Qt::AltModifier))
        return false;
    const QPointF place = placeInView(watched, event.position());
    if (event.modifiers() & Qt::ControlModifier) {
        const double steps = event.angleDelta().y() / kAngleOfStep;
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

bool PhotoZoom::handleGesture(const QObject *watched, QNativeGestureEvent &event)
{
    if (watched == m_window || event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    event.accept(); // else it goes on to the widgets that this one lies in
    const QPointF place = placeInView(watched, event.position());
    change([&](ViewTransform &wanted) { wanted.setScale(wanted.scale() * (1 + event.value()), place); });
    return true;
}

/// The middle button moves the photo, and the left one while the space bar is held.
bool PhotoZoom::handleMouse(const QObject *watched, const QMouseEvent &event)
{
    if (watched == m_window || watched == m_view.overview)
        return false;
    if (event.type() == QEvent::MouseButtonPress && !m_draggedFrom) {
        const bool holds = event.button() == Qt::MiddleButton || (event.button() == Qt::LeftButton && m_isSpaceHeld);
        if (!holds)
            return false;
        m_dragButton = event.button();
        m_draggedFrom = placeInView(watched, event.position());
        return true;
    }
    if (!m_draggedFrom)
        return false;
    if (event.type() == QEvent::MouseMove) {
        const QPointF place = placeInView(watched, event.position());
        panBy(place - *m_draggedFrom);
        m_draggedFrom = place;
    } else if (event.type() == QEvent::MouseButtonRelease && event.button() == m_dragButton) {
        m_draggedFrom.reset();
    }
    return true;
}

/// Two fingers on a screen hold the two places that they have touched.
bool PhotoZoom::handleTouch(const QObject *watched, const QTouchEvent &event)
{
    if (watched != m_view.paintView || event.device()->type() != QInputDevice::DeviceType::TouchScreen)
        return false;
    const bool isOver = event.type() == QEvent::TouchEnd || event.type() == QEvent::TouchCancel;
    const auto fingers = [&] {
        return QLineF(placeInView(watched, event.points().at(0).position()),
                      placeInView(watched, event.points().at(1).position()));
    };
    if (!m_hasTwoFingers) {
        if (isOver || event.pointCount() != 2)
            return false;
        if (m_view.paintView->isStrokeUnderWay() && !m_view.paintView->takeBackDab())
            return false;
        m_hasTwoFingers = true;
        m_fingers = fingers();
    } else if (event.pointCount() >= 2 && !isOver) {
        const QLineF before = std::exchange(m_fingers, fingers());
        const double factor = before.length() > 1 ? m_fingers.length() / before.length() : 1;
        change([&](ViewTransform &wanted) {
            wanted.panBy(m_fingers.center() - before.center());
            wanted.setScale(wanted.scale() * factor, m_fingers.center());
        });
    }
    if (isOver)
        m_hasTwoFingers = false;
    return true;
}

bool PhotoZoom::handleKey(const QKeyEvent &event)
{
    if (event.key() == Qt::Key_Space && event.type() == QEvent::KeyRelease) {
        if (!event.isAutoRepeat())
            holdPhoto(false);
        return false;
    }
    if (event.type() != QEvent::KeyPress || m_wanted.isFit())
        return false;
    if (event.key() == Qt::Key_Space && event.modifiers() == Qt::NoModifier) {
        const QPointF pointer = m_view.vwPreviewContainer->mapFromGlobal(QPointF(QCursor::pos()));
        if (!m_wanted.visible().contains(pointer))
            return false;
        holdPhoto(true);
        return true;
    }
    if (!(event.modifiers() & Qt::ControlModifier))
        return false;
    const QSizeF step = QSizeF(m_view.previewSize()) / kKeysAcross;
    switch (event.key()) {
    case Qt::Key_Left:
        panBy({step.width(), 0});
        return true;
    case Qt::Key_Right:
        panBy({-step.width(), 0});
        return true;
    case Qt::Key_Up:
        panBy({0, step.height()});
        return true;
    case Qt::Key_Down:
        panBy({0, -step.height()});
        return true;
    default:
        return false;
    }
}

/// As long as the space bar is held.
void PhotoZoom::holdPhoto(bool hold)
{
    if (hold == m_isSpaceHeld)
        return;
    m_isSpaceHeld = hold;
    if (hold)
        QGuiApplication::setOverrideCursor(Qt::OpenHandCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

} // namespace hazelmark
