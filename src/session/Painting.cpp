#include "Painting.h"

#include "PaintCanvas.h"
#include "Utils.h"

namespace hazelmark {

Painting::Painting(PaintCanvas &canvas)
    : m_canvas(canvas)
{
}

void Painting::keepStrokes()
{
    m_strokes = m_canvas.arrDrawedPoints();
}

void Painting::redraw()
{
    m_canvas.clearDrawing();
    m_canvas.restoreDrawedPoints(m_strokes);
    keepStrokes();
}

void Painting::clear()
{
    m_canvas.clearDrawing();
    keepStrokes();
}

void Painting::reset()
{
    m_maskImage = nullptr;
    m_maskGreenImageWithCustomPaint = nullptr;
    m_toolType = kToolNone;
    clear();
}

void Painting::updateMask()
{
    if (!isPainting())
        return;
    const QImage canvas = m_canvas.snapshot();
    // A slider that is dragged asks again and again over the same strokes.
    if (!m_maskImage || canvas.cacheKey() != m_maskCanvasKey)
        m_maskImage = Utils::sharedUtils().addBackgroundToImage(canvas, Qt::black);
    m_maskCanvasKey = canvas.cacheKey();
}

void Painting::loadInitMaskImages(QSizeF size)
{
    for (PhotoImagePtr *image : {&m_maskGreenImageWithCustomPaint, &m_maskImageWithCustomPaint}) {
        *image = PhotoImage::fromBitmap({});
        (*image)->setSize(size);
    }
}

void Painting::scaleInitMaskImages(QSizeF size)
{
    for (PhotoImagePtr *image : {&m_maskGreenImageWithCustomPaint, &m_maskImageWithCustomPaint})
        *image = Utils::sharedUtils().scaleImage(*image, size);
}

} // namespace hazelmark
