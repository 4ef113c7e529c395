#include "PaintStep.h"

#include "PointString.h"

namespace hazelmark {

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
