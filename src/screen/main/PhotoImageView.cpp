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

void PhotoImageView::setDetail(const Detail &detail)
{
    m_detail = detail;
    update();
}

/// Where the detail lies, in points.
QRectF PhotoImageView::detailTarget() const
{
    const double columns = m_frame.width() / m_detail.size.width();
    const double lines = m_frame.height() / m_detail.size.height();
    return {m_frame.x() + m_detail.part.x() * columns, m_frame.y() + m_detail.part.y() * lines,
            m_detail.part.width() * columns, m_detail.part.height() * lines};
}

void PhotoImageView::paintDetail(QPainter &painter, const QRectF &rect) const
{
    const QSizeF pixels = rect.size() * devicePixelRatioF();
    const bool isFull = m_detail.size == m_detail.photo;
    const bool pixelForPixel = std::abs(pixels.width() - m_detail.part.width()) < 0.5 &&
                               std::abs(pixels.height() - m_detail.part.height()) < 0.5;
    const bool isEnlarged = pixels.width() >= m_detail.part.width();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, !pixelForPixel && !(isFull && isEnlarged));
    painter.drawImage(rect, m_detail.shown, QRectF(m_detail.shown.rect()));
}

void PhotoImageView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const bool hasDetail = !m_detail.shown.isNull();
    const QRectF detail = hasDetail ? detailTarget() : QRectF();
    const QRectF rect = hasDetail ? m_frame : target();
    if (m_image.isNull() || !rect.contains(event->rect()))
        painter.fillRect(event->rect(), theme::kSurround);
    if (m_image.isNull() || rect.isEmpty())
        return;
    const qreal scale = devicePixelRatioF();
    if (m_image.hasAlphaChannel()) {
        painter.setBrushOrigin(rect.topLeft());
        painter.fillRect(rect & QRectF(event->rect()), checks(scale));
    }
    // Beside the detail, and only there, is what there is of the whole.
    const QRect covered(QPoint(int(std::ceil(detail.left())), int(std::ceil(detail.top()))),
                        QPoint(int(std::floor(detail.right())) - 1, int(std::floor(detail.bottom())) - 1));
    const QRegion beside = hasDetail ? (event->region() & rect.toAlignedRect()) - covered : QRegion(event->rect());
    if (!beside.isEmpty()) {
        const bool pixelForPixel = (rect.size() * scale).toSize() == m_image.size();
        painter.setClipRegion(beside);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, !pixelForPixel);
        painter.drawImage(rect, m_image, QRectF(m_image.rect()));
        painter.setClipping(false);
    }
    if (hasDetail)
        paintDetail(painter, detail);
}

} // namespace hazelmark
