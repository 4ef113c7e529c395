#include "ElidedLabel.h"

#include "AccessibleRole.h"

#include <QFontMetrics>
#include <QPainter>

namespace hazelmark {

ElidedLabel::ElidedLabel(const QColor &color, Qt::Alignment alignment, QWidget *parent)
    : QWidget(parent)
    , m_color(color)
    , m_alignment(alignment)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleRole(*this, QAccessible::StaticText);
}

void ElidedLabel::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    setAccessibleName(text);
    setToolTip(elided() == m_text ? QString() : m_text);
    updateGeometry();
    update();
}

QString ElidedLabel::elided() const
{
    return fontMetrics().elidedText(m_text, Qt::ElideMiddle, width());
}

QSize ElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(m_text) + 1, fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent *)
{
    setToolTip(elided() == m_text ? QString() : m_text);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(m_color);
    painter.drawText(rect(), static_cast<int>(m_alignment) | Qt::AlignVCenter | Qt::TextSingleLine, elided());
}

} // namespace hazelmark
