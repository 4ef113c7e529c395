#pragma once

#include <QWidget>

namespace hazelmark {

/// One side or corner of a frameless window: a strip above the content that resizes the window through the window
/// system, and draws the frame's thin line and its round corner.
class FrameEdge : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kSideWidth = 5;     ///< of the strip that takes hold of a side, in points
    static constexpr int kCornerLength = 12; ///< along either side

    FrameEdge(Qt::Edges edges, QWidget &window);

    /// `outer`: the part of the window that its frame and, on every side, `reach` points of shadow cover.
    void place(const QRect &frame, int reach);
    /// Corner radius of the frame in points, 0 for a square corner, and what shows outside the arc.
    void setCorner(qreal radius, const QColor &outside);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    const Qt::Edges m_edges;
    QRect m_frame; ///< in the window's coordinates
    qreal m_radius = 0;
    QColor m_outside;
};

} // namespace hazelmark
