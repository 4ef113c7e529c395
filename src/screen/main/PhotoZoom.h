#pragma once

#include "CoreFilterObject.h"
#include "ViewTransform.h"

#include <QElapsedTimer>
#include <QLineF>
#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <optional>

class QKeyEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QTouchEvent;
class QWheelEvent;

namespace hazelmark {

class BrushControls;
class MainScreenView;
class Session;
struct ViewPicture;

/// How near one is to the photo on the screen: takes what wheel, pinch, mouse and keys ask for, places photo and
/// canvas, and sees to sharp pictures of what is in sight. Main thread only.
///
/// What is asked for during a stroke is done when it is over.
class PhotoZoom : public QObject
{
    Q_OBJECT

public:
    /// All outlive it. `settings`: as they are now.
    PhotoZoom(MainScreenView &view, Session &session, std::function<CoreFilterObject()> settings);

    /// The brush, once there is one.
    void setBrush(BrushControls *brush);
    /// Takes the keys that nothing in the window has a use for.
    void setWindow(QWidget &window);
    /// The photo of so many pixels has been placed at fit, at `fitted`; it is brought back to how near it was.
    void setPlace(QSizeF photo, const QRectF &fitted);
    /// What is painted, or how it is to be blurred, has changed.
    void refresh();

    /// As it is shown now.
    const ViewTransform &transform() const { return m_transform; }

    void setFit();
    /// Of the screen's pixels per pixel of the photo, about the middle.
    void setScale(double scale);
    /// About the pointer where it is over the photo, else about the middle.
    void zoomBySteps(double steps);
    /// In points.
    void panBy(QPointF points);
    /// Brings this fraction of the photo into the middle.
    void centreOn(QPointF fraction);

signals:
    void changed();
    /// The photo is read in full size for the first time, or that is over.
    void readingChanged(bool isReading);
    /// How much of it is read, 0..1.
    void readingProgressed(double done);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    template <typename Change>
    void change(const Change &change);
    void apply();
    void showNear();
    void requestPicture();
    void pictureDrawn(const ViewPicture &picture);
    void showParts();

    QPointF middle() const;
    QPointF placeInView(const QObject *watched, QPointF position) const;
    bool handleWheel(const QObject *watched, const QWheelEvent &event);
    bool handleGesture(const QObject *watched, QNativeGestureEvent &event);
    bool handleMouse(const QObject *watched, const QMouseEvent &event);
    bool handleTouch(const QObject *watched, const QTouchEvent &event);
    bool handleKey(const QKeyEvent &event);
    void holdPhoto(bool hold);

    MainScreenView &m_view;
    Session &m_session;
    std::function<CoreFilterObject()> m_settings;
    BrushControls *m_brush = nullptr;
    ViewTransform m_transform;
    ViewTransform m_wanted;
    QPointer<QWidget> m_window;
    std::optional<QPointF> m_draggedFrom;
    Qt::MouseButton m_dragButton = Qt::NoButton;
    bool m_isSpaceHeld = false;
    bool m_hasTwoFingers = false; ///< until the last one is lifted
    QLineF m_fingers;             ///< where they were last
    QElapsedTimer m_waiting;      ///< since the first move that no sharp picture has come after
    bool m_isBehind = false;      ///< pictures take longer than they are waited for
    QTimer m_patience;            ///< so long the sharp picture is waited for before what there is is moved
};

} // namespace hazelmark
