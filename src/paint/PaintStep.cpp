#include "PaintStep.h"

#include "PointString.h"

#include <algorithm>

namespace hazelmark {

namespace {

/// The full part of a hard tip this wide reaches from the middle to the corners of the largest canvas, whose sides have
/// 32767 points.
constexpr float kCoveringPointSize = 131072;
constexpr QPointF kMiddle(0.5, 0.5);

} // namespace

PaintStep::PaintStep(Color color, QPointF start, QPointF end, float pointSize, float hardness, bool eraser, float alpha,
                     float brushPixelStep)
    : m_color(color)
    , m_start(start)
    , m_end(end)
    , m_eraser(eraser)
    , m_pointSize(pointSize)
    , m_hardness(hardness)
    , m_alpha(alpha)
    , m_brushPixelStep(brushPixelStep)
{
}

PaintStep::PaintStep(const QVariantList &data)
    : PaintStep({data.at(2).toFloat(), data.at(3).toFloat(), data.at(4).toFloat(), data.at(5).toFloat()},
                pointFromString(data.at(0).toString()).value_or(QPointF()),
                pointFromString(data.at(1).toString()).value_or(QPointF()), data.at(6).toFloat(), data.at(7).toFloat(),
                data.at(8).toBool(), data.at(9).toFloat(), data.at(10).toFloat())
{
}

PaintStep PaintStep::scaledTo(double canvasWidth) const
{
    if (m_canvasWidth <= 0 || canvasWidth <= 0 || m_canvasWidth == canvasWidth)
        return *this;
    PaintStep scaled = *this;
    scaled.m_pointSize = float(m_pointSize * (canvasWidth / m_canvasWidth));
    scaled.m_brushPixelStep = float(m_brushPixelStep * (canvasWidth / m_canvasWidth));
    scaled.m_canvasWidth = canvasWidth;
    return scaled;
}

PaintStep PaintStep::covering(Color color, bool eraser)
{
    return {color, kMiddle, kMiddle, kCoveringPointSize, 1, eraser, 1, kCoveringPointSize / 10};
}

bool PaintStep::coversCanvas() const
{
    return m_pointSize == kCoveringPointSize && m_start == kMiddle && m_end == kMiddle && m_hardness == 1 &&
           (m_eraser || m_color.alpha == 1);
}

std::size_t firstSeenStep(const PaintStepList &steps, std::size_t count)
{
    for (std::size_t i = std::min(count, steps.size()); i > 0; --i) {
        if (steps[i - 1].coversCanvas())
            return i - 1;
    }
    return 0;
}

QVariantList PaintStep::data() const
{
    return {stringFromPoint(m_start),
            stringFromPoint(m_end),
            float(m_color.red),
            float(m_color.green),
            float(m_color.blue),
            float(m_color.alpha),
            m_pointSize,
            m_hardness,
            m_eraser,
            m_alpha,
            m_brushPixelStep};
}

} // namespace hazelmark
