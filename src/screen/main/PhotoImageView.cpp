#include "PhotoImageView.h"

#include "Theme.h"

#include <QPaintEvent>
#include <QPainter>

#include <cmath>

namespace hazelmark {

namespace {

constexpr int kCheckSize = 8; ///< points
constexpr QColor kCheckDark{0x3a, 0x3a, 0x3a};
constexpr QColor kCheckLight{0x46, 0x46, 0x46};

/// Stands for "nothing here" where a picture is transparent.
QBrush checks(qreal scale)
{
    const int side = qRound(kCheckSize * scale);
    QPixmap tile(2 * side, 2 * side);
    tile.fill(kCheckDark);
    QPainter painter(&tile);
    painter.fillRect(0, 0, side, side, kCheckLight);
    painter.fillRect(side, side, side, side, kCheckLight);
    painter.end();
    tile.setDevicePixelRatio(scale);
    return QBrush(tile);
}

} // namespace

PhotoImageView::PhotoImageView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PhotoImageView::setImage(const QImage &shown)
{
    m_image = shown;
    update();
}

void PhotoImageView::setPictureFrame(const QRectF &frame)
{
    if (frame == m_frame)
        return;
    m_frame = frame;
    update();
}

/// Where the picture is drawn, in points. Its corner lies on a whole pixel of the screen; a picture that has the
/// frame's pixels (rounded down) keeps its size.
QRectF PhotoImageView::target() const
{
    const qreal scale = devicePixelRatioF();
    QSizeF size(std::floor(m_frame.width() * scale), std::floor(m_frame.height() * scale));
    const QPointF centre = m_frame.center() * scale;
    const QPointF corner(std::round(centre.x() - size.width() / 2), std::round(centre.y() - size.height() / 2));
    return QRectF(corner / scale, size / scale);
}

void PhotoImageView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QRectF rect = target();
    if (m_image.isNull() || !rect.contains(event->rect()))
        painter.fillRect(event->rect(), theme::kSurround);
    if (m_image.isNull() || rect.isEmpty())
        return;
    const qreal scale = devicePixelRatioF();
    if (m_image.hasAlphaChannel()) {
        painter.setBrushOrigin(rect.topLeft());
        painter.fillRect(rect, checks(scale));
    }
    const bool pixelForPixel = (rect.size() * scale).toSize() == m_image.size();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !pixelForPixel);
    painter.drawImage(rect, m_image, QRectF(m_image.rect()));
}

} // namespace hazelmark
