#include "OverviewView.h"

#include "Theme.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace hazelmark {

namespace {

/// Long strips keep a side that can be hit.
constexpr double kShortestSide = 16;
constexpr QColor kOutOfSight{0, 0, 0, 110};

} // namespace

OverviewView::OverviewView(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("overview"));
    setCursor(Qt::PointingHandCursor);
    hide();
}

void OverviewView::setImage(const QImage &shown)
{
    m_image = shown;
    m_small = {};
    update();
}

void OverviewView::setPart(QSizeF photo, const QRectF &part)
{
    const QSizeF size = photo.scaled(kLongestSide, kLongestSide, Qt::KeepAspectRatio);
    resize(size.expandedTo({kShortestSide, kShortestSide}).toSize() + QSize(2, 2));
    m_part = part;
    update();
}

QRectF OverviewView::picture() const
{
    return QRectF(rect()).adjusted(1, 1, -1, -1);
}

void OverviewView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF whole = picture();
    const QSize pixels = (whole.size() * devicePixelRatioF()).toSize();
    if (m_small.size() != pixels && !m_image.isNull())
        m_small = m_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    painter.fillRect(rect(), theme::kField);
    if (!m_small.isNull())
        painter.drawImage(whole, m_small);
    const QRectF seen(whole.x() + m_part.x() * whole.width(), whole.y() + m_part.y() * whole.height(),
                      std::max(m_part.width() * whole.width(), 3.0), std::max(m_part.height() * whole.height(), 3.0));
    QPainterPath beside;
    beside.addRect(whole);
    QPainterPath inside;
    inside.addRect(seen);
    painter.fillPath(beside.subtracted(inside), kOutOfSight);
    painter.setPen(QPen(Qt::white, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(seen.toAlignedRect() & rect().adjusted(1, 1, -1, -1)).adjusted(0.5, 0.5, -0.5, -0.5));
    painter.setPen(QPen(theme::kBorder, 1));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

void OverviewView::want(QPointF position)
{
    const QRectF whole = picture();
    emit placeWanted({(position.x() - whole.x()) / whole.width(), (position.y() - whole.y()) / whole.height()});
}

void OverviewView::mousePressEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
    if (event->isAccepted())
        want(event->position());
}

void OverviewView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        want(event->position());
}

} // namespace hazelmark
