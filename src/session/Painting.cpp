#include "Painting.h"

#include "PaintCanvas.h"
#include "Utils.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

constexpr Color kGreen{0, 1, 0, 1};

} // namespace

Painting::Painting(PaintCanvas &canvas)
    : m_canvas(canvas)
    , m_history(canvas)
{
    m_canvas.setScalesStrokes(true);
}

bool Painting::isEmpty() const
{
    return m_strokes->empty() || (m_strokes->back().coversCanvas() && m_strokes->back().eraser());
}

bool Painting::isFull() const
{
    return !m_strokes->empty() && m_strokes->back().coversCanvas() && !m_strokes->back().eraser();
}

void Painting::keepStrokes()
{
    m_strokes = m_canvas.arrDrawedPoints();
}

void Painting::redraw()
{
    m_canvas.clearDrawing();
    m_history.redraw(m_strokes);
    keepStrokes();
}

void Painting::clear()
{
    m_canvas.clearDrawing();
    keepStrokes();
    m_history.forget();
    m_scales.clear();
}

void Painting::blurEverything()
{
    m_history.append(PaintEdit::Everything, {PaintStep::covering(kGreen, false)});
    keepStrokes();
}

void Painting::clearPainting()
{
    m_history.append(PaintEdit::Clear, {PaintStep::covering(kGreen, true)});
    keepStrokes();
}

StrokesFile Painting::file() const
{
    std::size_t first = firstSeenStep(*m_strokes, m_strokes->size());
    if (first < m_strokes->size() && (*m_strokes)[first].coversCanvas() && (*m_strokes)[first].eraser())
        ++first; // as the canvas is at first
    StrokesFile file;
    file.canvas = m_canvas.canvasSize();
    file.scale = scaled().scale;
    file.steps = std::make_shared<PaintStepList>(m_strokes->begin() + std::ptrdiff_t(first), m_strokes->end());
    for (PaintStep &step : *file.steps)
        step = step.scaledTo(file.canvas.width());
    return file;
}

void Painting::replaceBy(const StrokesFile &painting)
{
    PaintStepList appended;
    if (!isEmpty())
        appended.push_back(PaintStep::covering(kGreen, true));
    const PaintStepList &steps = *painting.steps;
    appended.insert(appended.end(), steps.begin(), steps.end());
    if (painting.scale > 1 && !steps.empty())
        m_scales.push_back(
            {m_strokes->size() + appended.size() - steps.size(), painting.scale * painting.canvas.width()});
    if (!appended.empty())
        m_history.append(PaintEdit::Restore, appended);
    keepStrokes();
}

double Painting::paintedFraction() const
{
    const QImage pixels = m_canvas.snapshot();
    if (isEmpty() || pixels.isNull())
        return 0;
    // A grid of some 100,000 pixels is enough for a number in per cent.
    const int every = std::max(1, int(std::sqrt(double(pixels.width()) * pixels.height() / 1e5)));
    qint64 alpha = 0;
    qint64 count = 0;
    for (int y = every / 2; y < pixels.height(); y += every) {
        const uchar *line = pixels.constScanLine(y);
        for (int x = every / 2; x < pixels.width(); x += every, ++count)
            alpha += line[4 * x + 3];
    }
    return count > 0 ? double(alpha) / (255.0 * double(count)) : 0;
}

void Painting::raiseScale(double zoom)
{
    if (zoom > 1)
        m_scales.push_back({m_canvas.arrDrawedPoints()->size(), zoom * m_canvas.canvasSize().width()});
}

void Painting::lowerScale(double zoom)
{
    if (zoom > 1 && !m_scales.empty())
        m_scales.pop_back();
}

ScaledPainting Painting::scaled() const
{
    const QSizeF frame = m_canvas.canvasSize();
    auto steps = std::make_shared<PaintStepList>(*m_canvas.arrDrawedPoints());
    std::size_t first = firstSeenStep(*steps, steps->size());
    if (first < steps->size() && (*steps)[first].coversCanvas())
        ++first; // no stroke
    double scale = 1;
    for (const BegunAt &begun : m_scales)
        scale = begun.step < first ? scale : std::max(scale, begun.canvasWidth / frame.width());
    return {std::move(steps), frame, std::min(scale, ScaledPainting::largestScale(frame, m_photoSize))};
}

QImage Painting::canvas() const
{
    return isEmpty() ? QImage() : m_canvas.snapshot();
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
