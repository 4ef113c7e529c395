#include "PaintCanvas.h"

#include "Geometry.h"
#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PaintControl.h"
#include "ParallelFor.h"

#include <QUndoCommand>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <utility>

namespace hazelmark {

namespace {

/// How many stamps a replay places before it draws them where somebody wants to see the buffer on the way.
constexpr std::size_t kStampsToBeSeen = 1 << 11;

class ReplaceSession : public QUndoCommand
{
public:
    using Load = std::function<void(const QVariantList &)>;

    ReplaceSession(Load load, QVariantList before, QVariantList after)
        : m_load(std::move(load))
        , m_before(std::move(before))
        , m_after(std::move(after))
    {
    }
    void undo() override { m_load(m_before); }
    void redo() override { m_load(m_after); }

private:
    Load m_load;
    QVariantList m_before;
    QVariantList m_after;
};

} // namespace

PaintCanvas::PaintCanvas()
    : m_paintSession(std::make_shared<PaintSession>())
{
}

PaintCanvas::~PaintCanvas() = default;

void PaintCanvas::setCanvasSize(QSizeF canvasSize)
{
    m_canvasSize = canvasSize;
}

QSize PaintCanvas::bufferSize() const
{
    return canvasPixelSize(m_canvasSize);
}

void PaintCanvas::setBrushState(const BrushState &state)
{
    m_brush = state.brush;
    m_brushColor = state.brushColor;
    m_pointSize = state.pointSize;
    m_brushPixelStep = state.brushPixelStep;
    m_pointAlpha = state.pointAlpha;
    m_hardness = state.hardness;
    m_eraser = state.eraser;
}

PaintStep PaintCanvas::paintStepFromPoint(QPointF from, QPointF to) const
{
    PaintStep step(m_brushColor, from, to, m_pointSize, m_hardness, m_eraser, m_pointAlpha, m_brushPixelStep);
    step.setCanvasWidth(m_canvasSize.width());
    return step;
}

void PaintCanvas::appendStep(const PaintStep &step)
{
    m_paintSession->addStep(step);
    drawNewestStep();
}

void PaintCanvas::drawNewestStep()
{
    const PaintStepList &steps = *m_paintSession->steps();
    if (steps.empty())
        clearBuffer();
    m_brush = PaintControl::brushImageWithHardness(m_hardness, m_eraser, 1.0F);
    if (!steps.empty() && isStepInside(steps.back(), m_canvasSize))
        drawStep(asDrawn(steps.back()));
}

void PaintCanvas::syncBrushState(const PaintStep &step)
{
    if (m_hardness != step.hardness() || m_pointAlpha != step.alpha()) {
        m_brush = PaintControl::brushImageWithHardness(step.hardness(), step.eraser(), step.alpha());
        m_hardness = step.hardness();
        m_pointAlpha = step.alpha();
    }
    m_brushColor = step.color();
    m_eraser = step.eraser();
    m_pointSize = step.pointSize();
    m_brushPixelStep = step.brushPixelStep();
}

void PaintCanvas::bindBrush()
{
    if (!m_brushTexture.isMadeFrom(m_brush))
        m_brushTexture = BrushTexture(m_brush);
}

void PaintCanvas::drawStep(const PaintStep &step)
{
    const BrushState brush = brushState();
    syncBrushState(step);
    bindBrush();
    renderLineFromPoint(Geometry::convertedPointToFrameBase(step.start(), m_canvasSize),
                        Geometry::convertedPointToFrameBase(step.end(), m_canvasSize));
    if (step.coversCanvas())
        setBrushState(brush);
}

void PaintCanvas::renderLineFromPoint(QPointF from, QPointF to)
{
    if (bufferSize().isEmpty())
        return;
    placeStamps(from, to, m_canvasSize, m_pointSize, m_brushPixelStep, m_centres);
    fitBufferToFrame();
    const QRect touched = boundPainter().stamp(StampTarget(m_buffer), m_centres);
    if (!touched.isEmpty())
        bufferChanged(touched);
}

StampPainter PaintCanvas::boundPainter()
{
    return {m_eraser ? StampPainter::Mode::Erase : StampPainter::Mode::Paint, m_brushColor, m_pointSize,
            m_brushTexture};
}

void PaintCanvas::fitBufferToFrame()
{
    const QSize size = bufferSize();
    if (m_buffer.isNull()) {
        m_buffer = QImage(size, QImage::Format_RGBA8888_Premultiplied);
        m_buffer.fill(0);
        m_drawnSize = m_canvasSize;
    } else if (m_buffer.size() != size) {
        m_buffer = m_buffer.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        m_buffer.convertTo(QImage::Format_RGBA8888_Premultiplied);
        m_drawnSize = {};
        bufferChanged(m_buffer.rect());
    }
}

void PaintCanvas::clearBuffer()
{
    if (m_buffer.isNull())
        return;
    m_buffer = QImage();
    bufferChanged(QRect(QPoint(), bufferSize()));
}

void PaintCanvas::removeAllPixelsDrawed()
{
    if (m_paintSession->steps()->empty())
        clearBuffer();
    m_brush = PaintControl::brushImageWithHardness(m_hardness, m_eraser, 1.0F);
    // The pass stamps with a fully transparent colour: no pixel changes, so the stamps are left out. What the steps do
    // to the brush state stays.
    for (const PaintStep &step : *m_paintSession->steps()) {
        if (isStepInside(step, m_canvasSize) && !step.coversCanvas())
            syncBrushState(asDrawn(step));
    }
}

void PaintCanvas::clearDrawing()
{
    m_brushTexture = BrushTexture();
    removeAllPixelsDrawed();
    m_sessionPrevDataArray.clear();
    m_paintSession->setSteps(std::make_shared<PaintStepList>());
    m_paintSession->clear();
    clearBuffer();
}

void PaintCanvas::restoreDrawedPoints(const std::shared_ptr<PaintStepList> &steps, const Progress &drawn)
{
    removeAllPixelsDrawed();
    clearBuffer();
    m_paintSession->setSteps(steps && !steps->empty() ? steps : std::make_shared<PaintStepList>());
    const PaintStepList &all = *m_paintSession->steps();
    replay(firstSeenStep(all, all.size()), QRect(QPoint(), bufferSize()), drawn);
}

void PaintCanvas::replay(std::size_t first, const QRect &clip, const Progress &drawn)
{
    const PaintStepList &steps = *m_paintSession->steps();
    std::vector<StampedSegment> segments;
    std::size_t stamps = 0;
    const std::size_t atOnce = drawn ? kStampsToBeSeen : kStampsAtOnce;
    const auto draw = [&](std::size_t count) {
        drawSegments(segments, clip);
        segments.clear();
        stamps = 0;
        if (drawn)
            drawn(count);
    };
    for (std::size_t i = first; i < steps.size(); ++i) {
        if (!isStepInside(steps[i], m_canvasSize))
            continue;
        const PaintStep step = asDrawn(steps[i]);
        const BrushState brush = brushState();
        syncBrushState(step);
        if (!boundsOf(steps.begin() + std::ptrdiff_t(i), steps.begin() + std::ptrdiff_t(i) + 1).intersects(clip))
            continue;
        bindBrush();
        StampedSegment &segment = segments.emplace_back(StampedSegment{boundPainter(), {}});
        if (step.coversCanvas())
            setBrushState(brush);
        placeStamps(Geometry::convertedPointToFrameBase(step.start(), m_canvasSize),
                    Geometry::convertedPointToFrameBase(step.end(), m_canvasSize), m_canvasSize, step.pointSize(),
                    step.brushPixelStep(), segment.centres);
        stamps += segment.centres.places.size();
        if (stamps >= atOnce)
            draw(i + 1);
    }
    draw(steps.size());
}

void PaintCanvas::drawSegments(const std::vector<StampedSegment> &segments, const QRect &clip)
{
    if (segments.empty() || bufferSize().isEmpty())
        return;
    fitBufferToFrame();
    stampSegments(segments, m_buffer, {clip}, defaultThreadCount());
    bufferChanged(clip);
}

void PaintCanvas::drawSteps(std::size_t first, const QRect &clip)
{
    const BrushState brush = brushState();
    replay(first, clip, {});
    setBrushState(brush);
}

void PaintCanvas::setPixels(const QImage &pixels, const QRect &clip)
{
    if (clip.contains(QRect(QPoint(), bufferSize()))) {
        clearBuffer();
        m_buffer = pixels;
        m_drawnSize = m_canvasSize;
    } else if (!clip.isEmpty()) {
        fitBufferToFrame();
        const qsizetype bytes = 4 * qsizetype(clip.width());
        for (int y = clip.top(); y <= clip.bottom(); ++y) {
            uchar *line = m_buffer.scanLine(y) + 4 * qsizetype(clip.left());
            if (pixels.isNull())
                std::memset(line, 0, std::size_t(bytes));
            else
                std::memcpy(line, pixels.constScanLine(y) + 4 * qsizetype(clip.left()), std::size_t(bytes));
        }
    }
    bufferChanged(clip);
}

QRect PaintCanvas::boundsOf(PaintStepList::const_iterator begin, PaintStepList::const_iterator end) const
{
    const QRectF buffer(QPointF(), bufferSize());
    QRectF reached;
    for (auto step = begin; step != end; ++step) {
        const float size = asDrawn(*step).pointSize();
        if (!isStepInside(*step, m_canvasSize) || !(size > 0) || !std::isfinite(size))
            continue;
        // The stamps lie between the ends, and pixels on their rim.
        const double reach = size / 2.0 + 2;
        const QPointF from = Geometry::convertedPointToFrameBase(step->start(), m_canvasSize);
        const QPointF to = Geometry::convertedPointToFrameBase(step->end(), m_canvasSize);
        reached |= QRectF(from, to).normalized().adjusted(-reach, -reach, reach, reach) & buffer;
    }
    return reached.toAlignedRect() & QRect(QPoint(), bufferSize());
}

void PaintCanvas::updatePaintCanvasBySessionDataArray(const QVariantList &dataArray)
{
    const auto load = [this](const QVariantList &records) { loadSession(records); };
    m_undoStack.push(new ReplaceSession(load, m_sessionPrevDataArray, dataArray));
}

void PaintCanvas::loadSession(const QVariantList &dataArray)
{
    m_paintSession->setDataArray(dataArray);
    m_sessionPrevDataArray = dataArray;
    drawNewestStep();
}

QImage PaintCanvas::snapshot()
{
    if (bufferSize().isEmpty())
        return {};
    if (m_buffer.isNull()) {
        QImage blank(bufferSize(), QImage::Format_RGBA8888_Premultiplied);
        blank.fill(0);
        return blank;
    }
    fitBufferToFrame();
    return m_buffer;
}

void PaintCanvas::mouseDown(QPointF place)
{
    m_firstLocation = Geometry::convertedPointToPercentBase(place, m_canvasSize);
    appendStep(paintStepFromPoint(m_firstLocation, m_firstLocation));
    if (m_stepAppended)
        m_stepAppended();
}

void PaintCanvas::mouseDragged(QPointF place)
{
    const QPointF location = Geometry::convertedPointToPercentBase(place, m_canvasSize);
    const PaintStep step = paintStepFromPoint(m_firstLocation, location);
    m_firstLocation = location;
    appendStep(step);
    if (m_stepAppended)
        m_stepAppended();
}

void PaintCanvas::mouseUp()
{
    sendDrawingEndedNotification();
}

void PaintCanvas::sendDrawingEndedNotification()
{
    NotificationCenter::defaultCenter().post(kNotificationBurshDrawedRegionUpdated);
}

void PaintCanvas::bufferChanged(const QRect & /*rect*/) {}

} // namespace hazelmark
