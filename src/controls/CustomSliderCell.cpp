#include "CustomSliderCell.h"

#include "FloatSlider.h"
#include "Theme.h"

#include <QPainter>

namespace hazelmark {

namespace {

constexpr QColor kTrackColor{167, 166, 165, 128}; // alpha 0.5
constexpr qreal kTrackHeight = 5.0;
constexpr qreal kTrackRadius = -2.0; // a negative radius rounds nothing: track and done part both have square ends
constexpr qreal kKnobDiameter = 11.0;
constexpr QPointF kKnobInset{4.5, 5.5};
constexpr qreal kKnobLine = 2.0;

} // namespace

CustomSliderCell::CustomSliderCell(const FloatSlider &slider)
    : m_slider(slider)
{
}

void CustomSliderCell::drawKnob(QPainter &painter, const QRectF &knobRect) const
{
    // The oval and the line around it have one colour, and are filled as one: drawn apart they would show where they
    // lie on each other when the slider is dimmed.
    const QRectF oval(knobRect.topLeft() + kKnobInset, QSizeF(kKnobDiameter, kKnobDiameter));
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::kGreen);
    painter.drawEllipse(oval.adjusted(-kKnobLine / 2, -kKnobLine / 2, kKnobLine / 2, kKnobLine / 2));
}

void CustomSliderCell::drawBarInside(QPainter &painter, const QRectF &barRect, bool) const
{
    QRectF part(barRect.topLeft(), QSizeF(barRect.width(), kTrackHeight));
    painter.setPen(Qt::NoPen);
    painter.setBrush(kTrackColor);
    painter.drawRoundedRect(part, kTrackRadius, kTrackRadius);
    part.setWidth(m_slider.fraction() * (m_slider.width() - FloatSlider::kTrackInset * 2));
    painter.setBrush(theme::kGreen);
    painter.drawRoundedRect(part, kTrackRadius, kTrackRadius);
}

} // namespace hazelmark
