#pragma once

#include <QPointF>
#include <QWidget>

class QTimer;

namespace hazelmark {

class PaintView;

/// The photo for the keyboard and for screen readers: a transparent view over it that takes the focus, and draws the
/// circle that the arrow keys move. The space bar paints with it; the pointer stays where it is.
class KeyboardCursor : public QWidget
{
    Q_OBJECT

public:
    /// What an arrow key moves the circle by, in points; ten times as much with Shift.
    static constexpr int kStepPoints = 4;

    /// `canvas` is what is painted on; this view stands over its frame. It outlives the cursor.
    explicit KeyboardCursor(PaintView &canvas, QWidget *parent = nullptr);

    /// The circle is there: it counts as the pointer over the photo.
    bool isCircleShown() const { return m_isShown; }
    /// In points of this view, which lies over what is seen of the canvas.
    QPointF place() const { return m_place; }
    /// Takes the circle away until the next key.
    void hideCircle();

    /// The share of the photo that is painted, 0..1, for those who cannot see it; and what is said of it.
    void setPainted(double fraction, const QString &description);
    double painted() const { return m_painted; }

signals:
    /// isCircleShown() answers otherwise now.
    void circleChanged();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showCircle();
    void moveBy(QPointF way);
    void endStroke();
    void followBrush();

    PaintView &m_canvas;
    QPointF m_fraction{0.5, 0.5}; ///< of what is seen: stays in the picture when the window changes its size
    QPointF m_place;
    QTimer *m_brushPoll;
    double m_drawnSize = 0;
    bool m_drawnEraser = false;
    bool m_isShown = false;
    bool m_hasMoved = false; ///< by an arrow key, since it is shown
    bool m_isPainting = false;
    double m_painted = 0;
};

} // namespace hazelmark
