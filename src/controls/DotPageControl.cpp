#include "DotPageControl.h"

#include "AccessibleRole.h"
#include "FocusRing.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace hazelmark {

DotPageControl::DotPageControl(QWidget *parent)
    : QWidget(parent)
    , m_fill(theme::kRaised)
    , m_currentFill(theme::kText)
    , m_stroke(theme::kQuietText)
{
    setAccessibleRole(*this, QAccessible::PageTabList);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void DotPageControl::setNumberOfPages(int pages)
{
    m_numberOfPages = std::max(0, pages);
    setCurrentPage(m_currentPage);
    updateGeometry();
}

void DotPageControl::setCurrentPage(int page)
{
    m_currentPage = std::clamp(page, 0, std::max(0, m_numberOfPages - 1));
    update();
}

void DotPageControl::setDotSize(qreal diameter, qreal margin)
{
    m_diameter = diameter;
    m_margin = margin;
    updateGeometry();
    update();
}

void DotPageControl::setDotColors(const QColor &fill, const QColor &currentFill, const QColor &stroke)
{
    m_fill = fill;
    m_currentFill = currentFill;
    m_stroke = stroke;
    update();
}

QSize DotPageControl::sizeHint() const
{
    const qreal width = m_numberOfPages * (m_diameter + m_margin) + m_margin;
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(m_diameter + 2 * m_margin))};
}

QRectF DotPageControl::dotRect(int page) const
{
    const qreal rowWidth = m_numberOfPages * (m_diameter + m_margin) - m_margin;
    return {(width() - rowWidth) / 2 + page * (m_diameter + m_margin), (height() - m_diameter) / 2, m_diameter,
            m_diameter};
}

int DotPageControl::pageAt(const QPointF &point) const
{
    for (int page = 0; page < m_numberOfPages; ++page) {
        // The gaps belong to the dots beside them, so that small dots are easy to hit.
        if (dotRect(page).adjusted(-m_margin / 2, -m_margin, m_margin / 2, m_margin).contains(point))
            return page;
    }
    return -1;
}

void DotPageControl::select(int page)
{
    if (page < 0 || page >= m_numberOfPages)
        return;
    setCurrentPage(page);
    emit pageSelected(page);
}

void DotPageControl::mousePressEvent(QMouseEvent *event)
{
    event->setAccepted(event->button() == Qt::LeftButton);
}

void DotPageControl::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        select(pageAt(event->position()));
}

void DotPageControl::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Left)
        select(m_currentPage - 1);
    else if (event->key() == Qt::Key_Right)
        select(m_currentPage + 1);
    else
        QWidget::keyPressEvent(event);
}

void DotPageControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(m_stroke);
    for (int page = 0; page < m_numberOfPages; ++page) {
        painter.setBrush(page == m_currentPage ? m_currentFill : m_fill);
        painter.drawEllipse(dotRect(page).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    drawFocusRing(painter, *this);
}

} // namespace hazelmark
