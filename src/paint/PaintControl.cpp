#include "PaintControl.h"

#include "BrushTips.h"
#include "PaintCanvas.h"

namespace hazelmark {

PaintControl::PaintControl()
{
    loadDefaults();
}

PaintControl::PaintControl(PaintCanvas *paintView)
    : m_paintView(paintView)
{
    loadDefaults();
}

void PaintControl::awakeFromNib()
{
    loadDefaults();
}

void PaintControl::loadDefaults()
{
    setEraser(false);
    setColor({});
    setAlpha(0.5F);
    setHardness(0.5F);
    setLineWidth(50);
}

void PaintControl::setEraser(bool eraser)
{
    m_eraser = eraser;
    if (m_paintView)
        m_paintView->setEraser(eraser);
}

void PaintControl::setColor(const Color &color)
{
    m_color = color;
    if (m_paintView)
        m_paintView->setBrushColor(color);
}

void PaintControl::setAlpha(float alpha)
{
    m_alpha = alpha;
    if (!m_paintView)
        return;
    m_paintView->setPointAlpha(alpha);
    m_paintView->setBrush(brushImage());
}

void PaintControl::setHardness(float hardness)
{
    m_hardness = hardness;
    if (!m_paintView)
        return;
    m_paintView->setHardness(hardness);
    m_paintView->setBrush(brushImage());
}

void PaintControl::setLineWidth(float lineWidth)
{
    m_lineWidth = lineWidth;
    if (!m_paintView)
        return;
    // 1 - hardness in single precision, the rest in double: 1.62 diameters when soft, 1.02 when hard.
    m_stampSize = float((double(1.0F - m_hardness) * 0.6 + 1.02) * double(lineWidth));
    pushSizes();
    m_paintView->setBrush(brushImage());
}

void PaintControl::setZoom(double zoom)
{
    m_zoom = zoom;
    if (m_paintView)
        pushSizes();
}

void PaintControl::pushSizes()
{
    const auto pointSize = float(m_stampSize / m_zoom);
    m_paintView->setPointSize(pointSize);
    m_paintView->setBrushPixelStep(float(double(pointSize) * 0.1));
}

QImage PaintControl::brushImage() const
{
    return brushImageWithHardness(m_hardness, m_eraser, m_alpha);
}

QImage PaintControl::brushImageWithHardness(float hardness, bool /*eraser*/, float /*alpha*/)
{
    return BrushTips::shared().tipForHardness(hardness);
}

} // namespace hazelmark
