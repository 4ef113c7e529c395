#include "ScaleToFillImageView.h"

#include "AccessibleRole.h"

#include <QPainter>

namespace hazelmark {

ScaleToFillImageView::ScaleToFillImageView(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleRole(*this, QAccessible::Graphic);
}

void ScaleToFillImageView::setImage(const QPixmap &image)
{
    m_image = image;
    updateGeometry();
    update();
}

QSize ScaleToFillImageView::sizeHint() const
{
    return m_image.deviceIndependentSize().toSize();
}

void ScaleToFillImageView::paintEvent(QPaintEvent *)
{
    if (m_image.isNull() || size().isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // The part of the picture, in its pixels, that the view shows.
    const QSizeF seen = QSizeF(size()).scaled(QSizeF(m_image.size()), Qt::KeepAspectRatio);
    const QPointF origin((m_image.width() - seen.width()) / 2, (m_image.height() - seen.height()) / 2);
    painter.drawPixmap(QRectF(rect()), m_image, QRectF(origin, seen));
}

} // namespace hazelmark
