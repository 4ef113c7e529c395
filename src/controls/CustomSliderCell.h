#pragma once

#include <QRectF>

class QPainter;

namespace hazelmark {

class FloatSlider;

/// How a slider looks: a thin track in two tones and a round green knob.
class CustomSliderCell
{
public:
    explicit CustomSliderCell(const FloatSlider &slider);

    /// `knobRect`: the 20 × 22 points that the knob stands in, in the slider's coordinates.
    void drawKnob(QPainter &painter, const QRectF &knobRect) const;
    /// Draws the track from the left edge of `barRect`, 5 points high from its top, and the done part on it, which is
    /// as wide as the value's fraction of the slider's width less 8 points. Top left is the origin whatever `flipped`
    /// says.
    void drawBarInside(QPainter &painter, const QRectF &barRect, bool flipped = true) const;

private:
    const FloatSlider &m_slider;
};

} // namespace hazelmark
