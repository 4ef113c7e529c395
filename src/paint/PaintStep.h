#pragma once

#include "Color.h"

#include <QPointF>
#include <QVariantList>

#include <cstddef>
#include <vector>

namespace hazelmark {

/// One brush segment: the straight line between two successive pointer positions, with the brush state that was in
/// force when it was drawn. Never changed once a session holds it.
///
/// Both ends are fractions of the canvas frame (x / width, y / height), origin top left, y downwards, unclamped: a
/// drag that leaves the canvas gives values below 0 or above 1. So the painting does not depend on the canvas size.
class PaintStep
{
public:
    PaintStep(Color color, QPointF start, QPointF end, float pointSize, float hardness, bool eraser, float alpha,
              float brushPixelStep);
    /// From the record form. Reading does not check: a record of another length is a programming error.
    explicit PaintStep(const QVariantList &data);

    /// How many elements a record has.
    static constexpr int kRecordLength = 11;
    /// The record form: start and end as "{x, y}", red, green, blue and alpha of the colour at single precision,
    /// point size, hardness, eraser, alpha, brush pixel step.
    QVariantList data() const;

    const Color &color() const { return m_color; }
    void setColor(const Color &color) { m_color = color; }
    QPointF start() const { return m_start; }
    QPointF end() const { return m_end; }
    /// Takes paint away instead of adding it.
    bool eraser() const { return m_eraser; }
    void setEraser(bool eraser) { m_eraser = eraser; }
    /// Stamp diameter in canvas points.
    float pointSize() const { return m_pointSize; }
    void setPointSize(float pointSize) { m_pointSize = pointSize; }
    /// 0 (soft over the whole radius) .. 1 (hard edge); chooses the tip.
    float hardness() const { return m_hardness; }
    void setHardness(float hardness) { m_hardness = hardness; }
    /// The opacity setting, 0..1. Kept and compared; no tip depends on it, so it is never seen.
    float alpha() const { return m_alpha; }
    void setAlpha(float alpha) { m_alpha = alpha; }
    /// Distance between two stamps in canvas points.
    float brushPixelStep() const { return m_brushPixelStep; }
    void setBrushPixelStep(float brushPixelStep) { m_brushPixelStep = brushPixelStep; }
    /// Width in points of the frame that point size and pixel step are meant for; 0: they hold on every frame. No part
    /// of the record form.
    double canvasWidth() const { return m_canvasWidth; }
    void setCanvasWidth(double canvasWidth) { m_canvasWidth = canvasWidth; }
    /// The step with the sizes that cover the same part of a frame of another width.
    PaintStep scaledTo(double canvasWidth) const;

    /// A step with one stamp that covers the canvas at every size with the brush's full coverage: it fills it, or as an
    /// eraser empties it.
    static PaintStep covering(Color color, bool eraser);
    /// Whether nothing is seen of what was painted before it, whatever the canvas's size.
    bool coversCanvas() const;

    bool operator==(const PaintStep &) const = default;

private:
    Color m_color;
    QPointF m_start;
    QPointF m_end;
    bool m_eraser;
    float m_pointSize;
    float m_hardness;
    float m_alpha;
    float m_brushPixelStep;
    double m_canvasWidth = 0;
};

/// Steps in drawing order, the oldest first.
using PaintStepList = std::vector<PaintStep>;

/// The first of the steps before `count` that can be seen of: the last one that covers the canvas; 0 when none does.
std::size_t firstSeenStep(const PaintStepList &steps, std::size_t count);

} // namespace hazelmark
