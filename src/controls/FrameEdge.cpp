#include "FrameEdge.h"

#include "Theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWindow>

namespace hazelmark {

namespace {

Qt::CursorShape cursorFor(Qt::Edges edges)
{
    if (edges == Qt::LeftEdge || edges == Qt::RightEdge)
        return Qt::SizeHorCursor;
    if (edges == Qt::TopEdge || edges == Qt::BottomEdge)
        return Qt::SizeVerCursor;
    const bool falling = edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge);
    return falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
}

} // namespace

FrameEdge::FrameEdge(Qt::Edges edges, QWidget &window)
    : QWidget(&window)
    , m_edges(edges)
{
    setCursor(cursorFor(edges));
    setAttribute(Qt::WA_NoSystemBackground);
}

void FrameEdge::place(const QRect &frame, int reach)
{
    m_frame = frame;
    const QRect outer = frame.adjusted(-reach, -reach, reach, reach);
    // With a shadow to take hold of, only the frame's line itself is taken from the content.
    const int side = reach > 0 ? reach + 1 : kSideWidth;
    const int corner = reach + kCornerLength;
    QRect place = outer;
    const bool isCorner = (m_edges & (Qt::LeftEdge | Qt::RightEdge)) && (m_edges & (Qt::TopEdge | Qt::BottomEdge));
    if (m_edges & Qt::LeftEdge)
        place.setWidth(isCorner ? corner : side);
    if (m_edges & Qt::RightEdge)
        place.setLeft(outer.right() + 1 - (isCorner ? corner : side));
    if (m_edges & Qt::TopEdge)
        place.setHeight(isCorner ? corner : side);
    if (m_edges & Qt::BottomEdge)
        place.setTop(outer.bottom() + 1 - (isCorner ? corner : side));
    if (m_edges == Qt::LeftEdge || m_edges == Qt::RightEdge)
        place.adjust(0, corner, 0, -corner);
    if (m_edges == Qt::TopEdge || m_edges == Qt::BottomEdge)
        place.adjust(corner, 0, -corner, 0);
    setGeometry(place);
    update();
}

void FrameEdge::setCorner(qreal radius, const QColor &outside)
{
    m_radius = radius;
    m_outside = outside;
    update();
}

void FrameEdge::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && window()->windowHandle())
        window()->windowHandle()->startSystemResize(m_edges);
    event->accept();
}

void FrameEdge::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-pos());
    const QRectF frame = m_frame;
    if (m_radius > 0) {
        // The content has painted into the corner: what stands outside the arc is taken away again, and the shadow
        // beneath it with it.
        QPainterPath outside;
        outside.addRect(frame);
        QPainterPath inside;
        inside.addRoundedRect(frame, m_radius, m_radius);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        painter.fillPath(outside.subtracted(inside), Qt::black);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.fillPath(outside.subtracted(inside), m_outside);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    painter.setPen(QPen(theme::kHairline, 1));
    painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), m_radius, m_radius);
}

} // namespace hazelmark
