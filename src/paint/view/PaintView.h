#pragma once

#include "CanvasPart.h"
#include "PaintCanvas.h"

#include <QImage>
#include <QPointer>
#include <QRectF>
#include <QWidget>

class QTimer;
class QTouchEvent;

namespace hazelmark {

/// The canvas as a transparent view over the photo: shows the pixels, paints with the pointer, and owns its cursor, a
/// circle as large as a stamp, green for paint and red for erase.
///
/// The left button, a pen and one finger paint. A stroke ends where they are lifted, or when its end would not come
/// here any more: the view is hidden or disabled, or a sheet blocks the window. Moves are not merged into fewer ones,
/// so that paint reaches close to an edge, where the segment that leaves the view is skipped.
///
/// Posts "notificationMouseIn" and "notificationMouseout" when the pointer comes and goes (see PointerTracker), and
/// "notificationBurshDrawedRegionUpdated" at the end of each stroke.
class PaintView : public QWidget, public PaintCanvas
{
    Q_OBJECT

public:
    explicit PaintView(QWidget *parent = nullptr);

    /// The rectangle in the parent that the canvas covers, real-valued. The widget itself stands on the whole points
    /// around it. A geometry that is set directly becomes the frame.
    QRectF frame() const { return m_frame; }
    void setFrame(const QRectF &frame);

    /// The canvas is shown enlarged: all of it would cover `whole`, and what can be seen is `visible`, both in points
    /// of the parent. The canvas keeps its frame. Segments that end outside what can be seen are kept and not drawn, as
    /// those outside the frame are. setFrame() ends it.
    void setShown(const QRectF &whole, const QRectF &visible);
    /// How many times its size the canvas is shown.
    double zoom() const { return m_zoom; }
    /// Shows these pixels, which are finer than the canvas's own, where they lie; `steps` are the ones drawn in them.
    /// What is painted is stamped on them, too. They go when the canvas is drawn anew, and with setFrame().
    void setCanvasPart(const CanvasPart &part, const PaintStepList &steps);

    /// How strongly the pixels are shown, 0..1. Never enters the snapshot.
    double opacity() const { return m_opacity; }
    void setOpacity(double opacity);

    /// A circle of the stamp's diameter on a transparent square one point larger: a white line, and inside it a green
    /// one when painting and a red one when erasing. At the view's backing scale.
    QImage cursorImage() const;

    /// Begun on this view and not ended yet, wherever the mouse, the pen or the finger is now.
    bool isStrokeUnderWay() const { return m_stroke != Stroke::None; }
    /// Ends the stroke that is under way, if there is one, with what is painted so far.
    void finishStroke();
    /// A second finger has come down: takes back, without a step, what the first one has dabbed. False when there is no
    /// stroke of a finger, or it is more than a dab.
    bool takeBackDab();

    /// What can be seen of the canvas, in points of this view.
    QRectF visibleFrame() const { return m_visible.translated(-geometry().topLeft()); }
    // A stroke by keyboard, at places in points of this view. The first says whether it has begun: one at a time.
    bool beginKeyStroke(QPointF place) { return beginStroke(Stroke::Keys, place); }
    void continueKeyStroke(QPointF place) { continueStroke(Stroke::Keys, place); }
    void endKeyStroke() { endStroke(Stroke::Keys); }

    // The pointer's coming and going, as the tracker tells of them.
    void mouseEntered();
    void mouseExited();
    /// Starts polling the cursor every 0.1 s. A poll that runs already is forgotten, but goes on.
    void checkMouseCursor();
    /// One poll: sets the cursor if the pointer is over the view in the window that the person works in.
    void checkMouseAfterDelay();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void bufferChanged(const QRect &rect) override;

signals:
    void strokeBegan();
    void strokeEnded();
    void strokeTakenBack();

private:
    /// What draws the stroke: one at a time, the others wait.
    enum class Stroke { None, Mouse, Pen, Touch, Keys };

    QPointF frameOffset() const;
    QPointF canvasPoint(QPointF position) const;
    void drawPart(QPainter &painter, const QRectF &target) const;
    QRectF shownRect(const QRectF &canvasRect, QSizeF canvas) const;
    double shownPointSize() const { return double(pointSize()) * m_zoom; }
    bool handleTouch(QTouchEvent &event);
    bool beginStroke(Stroke stroke, QPointF position);
    bool continueStroke(Stroke stroke, QPointF position);
    bool endStroke(Stroke stroke);
    void followGeometry();
    void setBrushCursor(float hotSpot);

    QRectF m_frame;
    QRectF m_whole;   ///< what all of the canvas covers
    QRectF m_visible; ///< what can be seen of it
    double m_zoom = 1;
    CanvasPart m_part;
    double m_opacity = 1;
    Stroke m_stroke = Stroke::None;
    int m_finger = 0;
    QPointF m_touchedAt;
    bool m_isDab = false;
    std::size_t m_stepsBefore = 0; ///< a finger's stroke, as the pixels are
    QImage m_pixelsBefore;
    QTimer *m_mouseTimer = nullptr;
    QPointer<QWidget> m_window;

    /// What the cursor that is set was made of.
    struct CursorKey
    {
        double pointSize = 0;
        float hotSpot = 0;
        bool eraser = false;
        double scale = 0;
        qint64 pixmap = 0;
        bool operator==(const CursorKey &) const = default;
    };
    CursorKey m_cursorKey;
};

} // namespace hazelmark
