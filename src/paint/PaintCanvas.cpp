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

/// More stamps than this change nothing that can be seen: the diagonal of the largest canvas has fewer pixels. A
/// spacing of next to nothing in a file would ask for any number of them.
constexpr float kMaxStampsPerSegment = 65536;
/// How often the stamps of a segment may pass over a pixel one by one. With a spacing of less than a thousandth of the
/// brush they are drawn together at places so near to each other that no pixel sees the difference: a segment takes no
/// longer than the pixels that it reaches are worth.
constexpr float kMostPasses = 1024;
constexpr float kPlacesPerBrush = 256;
constexpr float kFewestPlaces = 16;

/// A replay stamps bands of the canvas on all processors, each step on every band in its turn: high enough that most
/// stamps lie in one or two, many enough that the processors end together.
constexpr int kBandLines = 128;
/// How many stamps a replay places before it draws them; bounds what it takes besides the canvas.
constexpr std::size_t kStampsAtOnce = 1 << 15;

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
    return QSize(int(m_canvasSize.width()), int(m_canvasSize.height())).expandedTo(QSize(0, 0));
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
    if (!steps.empty() && isDrawable(steps.back()))
        drawStep(asDrawn(steps.back()));
}

bool PaintCanvas::isDrawable(const PaintStep &step) const
{
    const auto inside = [this](QPointF fraction) {
        const QPointF point = Geometry::convertedPointToFrameBase(fraction, m_canvasSize);
        return point.x() >= 0 && point.y() >= 0 && point.x() <= m_canvasSize.width() &&
               point.y() <= m_canvasSize.height();
    };
    return inside(step.start()) && inside(step.end());
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
    placeStamps(from, to, m_centres);
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

void PaintCanvas::placeStamps(QPointF from, QPointF to, StampCentres &centres) const
{
    // Lengths in single precision, and stamps placed on the grid of single-precision numbers with y counted from
    // below: it decides how many stamps a segment gets and which pixel a centre between two pixels falls to.
    const double height = m_canvasSize.height();
    const QPointF start(from.x(), height - from.y());
    const double dx = to.x() - from.x();
    const double dy = (height - to.y()) - start.y();
    const float distance = std::sqrt(float(dx * dx + dy * dy));
    const float wanted = std::ceil(distance / m_brushPixelStep);
    centres.places.clear();
    // A click gives 0 / step; not a number (0 / 0) fails the comparison too.
    const int count = wanted >= 1 ? int(std::min(wanted, kMaxStampsPerSegment)) : 1;
    const float brushes = distance / m_pointSize;
    const bool together = float(count) > kMostPasses * (1 + brushes);
    centres.times = together ? std::max(1, int(float(count) / (kPlacesPerBrush * brushes + kFewestPlaces))) : 1;

    const QSize size = bufferSize();
    const double columnsPerPoint = size.width() / m_canvasSize.width();
    const double linesPerPoint = size.height() / height;
    for (int first = 0; first < count; first += centres.times) {
        const double middle = first + (centres.times - 1) / 2.0;
        const auto x = float(start.x() + dx * middle / count);
        const auto y = float(start.y() + dy * middle / count);
        centres.places.push_back({x * columnsPerPoint, size.height() - y * linesPerPoint});
    }
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
        if (isDrawable(step) && !step.coversCanvas())
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
    std::vector<Segment> segments;
    std::size_t stamps = 0;
    const auto draw = [&](std::size_t count) {
        drawSegments(segments, clip);
        segments.clear();
        stamps = 0;
        if (drawn)
            drawn(count);
    };
    for (std::size_t i = first; i < steps.size(); ++i) {
        if (!isDrawable(steps[i]))
            continue;
        const PaintStep step = asDrawn(steps[i]);
        const BrushState brush = brushState();
        syncBrushState(step);
        if (!boundsOf(steps.begin() + std::ptrdiff_t(i), steps.begin() + std::ptrdiff_t(i) + 1).intersects(clip))
            continue;
        bindBrush();
        Segment &segment = segments.emplace_back(Segment{boundPainter(), {}});
        if (step.coversCanvas())
            setBrushState(brush);
        placeStamps(Geometry::convertedPointToFrameBase(step.start(), m_canvasSize),
                    Geometry::convertedPointToFrameBase(step.end(), m_canvasSize), segment.centres);
        stamps += segment.centres.places.size();
        if (stamps >= kStampsAtOnce)
            draw(i + 1);
    }
    draw(steps.size());
}

void PaintCanvas::drawSegments(const std::vector<Segment> &segments, const QRect &clip)
{
    if (segments.empty() || bufferSize().isEmpty())
        return;
    fitBufferToFrame();
    const StampTarget target = StampTarget(m_buffer).part(clip);
    const int height = target.endLine - target.beginLine;
    const int bands = std::max((height + kBandLines - 1) / kBandLines, defaultThreadCount());
    const auto lineOf = [&](int band) { return target.beginLine + int(qint64(height) * band / bands); };
    parallelFor(bands, defaultThreadCount(), [&](int band) {
        const QRect lines(clip.left(), lineOf(band), clip.width(), lineOf(band + 1) - lineOf(band));
        const StampTarget part = target.part(lines);
        for (const Segment &segment : segments)
            segment.painter.stamp(part, segment.centres);
    });
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
        if (!isDrawable(*step) || !(size > 0) || !std::isfinite(size))
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
