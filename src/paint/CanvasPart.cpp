#include "CanvasPart.h"

#include "BrushTips.h"
#include "Geometry.h"
#include "StampPlacement.h"

#include <QRegion>

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <vector>

namespace hazelmark {

namespace {

/// The textures of the tips that steps ask for, one at a time: neighbours have the same.
class TextureOfStep
{
public:
    const BrushTexture &operator()(const PaintStep &step)
    {
        if (m_hardness != step.hardness()) {
            m_texture = BrushTexture(BrushTips::shared().tipForHardness(step.hardness()));
            m_hardness = step.hardness();
        }
        return m_texture;
    }

private:
    std::optional<float> m_hardness;
    BrushTexture m_texture;
};

/// Around all stamps of a segment.
QRectF reachOf(QPointF from, QPointF to, double pointSize)
{
    const double reach = pointSize / 2 + 2;
    return QRectF(from, to).normalized().adjusted(-reach, -reach, reach, reach);
}

void copyPixels(const QImage &from, QPoint fromCorner, QImage &to, QPoint toCorner, const QRect &rect)
{
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        std::memcpy(to.scanLine(y - toCorner.y()) + 4 * (rect.left() - toCorner.x()),
                    from.constScanLine(y - fromCorner.y()) + 4 * (rect.left() - fromCorner.x()),
                    std::size_t(rect.width()) * 4);
}

} // namespace

CanvasPart::CanvasPart(QSizeF frame, double scale, const QRect &rect)
    : m_frame(frame)
    , m_scale(scale)
    , m_rect(rect & QRect(QPoint(), canvasSize(frame, scale)))
{
}

QSize CanvasPart::canvasSize(QSizeF frame, double scale)
{
    return canvasPixelSize(frame * scale);
}

void CanvasPart::makePixels()
{
    if (!m_pixels.isNull())
        return;
    m_pixels = QImage(m_rect.size(), QImage::Format_RGBA8888_Premultiplied);
    if (m_pixels.isNull())
        throw std::bad_alloc();
    m_pixels.fill(0);
}

bool CanvasPart::isOf(const PaintStepList &steps, const PaintStepList &drawn) const
{
    return m_stepCount <= steps.size() && m_stepCount <= drawn.size() &&
           (&steps == &drawn || std::equal(drawn.begin(), drawn.begin() + std::ptrdiff_t(m_stepCount), steps.begin()));
}

QRect CanvasPart::drawOn(const PaintStepList &steps, int threads)
{
    const std::size_t from = std::min(m_stepCount, steps.size());
    m_stepCount = steps.size();
    return isNull() ? QRect() : drawn(steps, from, steps.size(), threads);
}

QRect CanvasPart::drawn(const PaintStepList &steps, std::size_t from, std::size_t to, int threads)
{
    const QSizeF frame = m_frame * m_scale;
    const QRectF seen(m_rect);
    TextureOfStep textureOf;
    std::vector<StampedSegment> segments;
    std::size_t stamps = 0;
    QRectF touched;
    const auto stamp = [&] {
        if (segments.empty())
            return;
        makePixels();
        stampSegments(segments, m_pixels, m_pixels.rect(), threads);
        segments.clear();
        stamps = 0;
    };
    for (std::size_t i = std::max(from, firstSeenStep(steps, to)); i < to; ++i) {
        if (!isStepInside(steps[i], m_frame))
            continue;
        const PaintStep step = steps[i].scaledTo(m_frame.width());
        const QPointF start = Geometry::convertedPointToFrameBase(step.start(), frame);
        const QPointF end = Geometry::convertedPointToFrameBase(step.end(), frame);
        const auto pointSize = float(double(step.pointSize()) * m_scale);
        const QRectF reach = reachOf(start, end, pointSize);
        if (!reach.intersects(seen))
            continue;
        touched |= reach;
        const auto mode = step.eraser() ? StampPainter::Mode::Erase : StampPainter::Mode::Paint;
        StampedSegment &segment =
            segments.emplace_back(StampedSegment{{mode, step.color(), pointSize, textureOf(step)}, {}});
        placeStamps(start, end, frame, pointSize, float(double(step.brushPixelStep()) * m_scale), segment.centres);
        for (StampCentre &centre : segment.centres.places) {
            centre.x -= m_rect.x();
            centre.y -= m_rect.y();
        }
        stamps += segment.centres.places.size();
        if (stamps >= kStampsAtOnce)
            stamp();
    }
    stamp();
    return touched.toAlignedRect() & m_rect;
}

CanvasPart CanvasPart::movedTo(const QRect &rect, const PaintStepList &steps, int threads) const
{
    CanvasPart moved(m_frame, m_scale, rect);
    moved.m_stepCount = m_stepCount;
    const QRect common = m_rect & moved.m_rect;
    if (!common.isEmpty() && !m_pixels.isNull()) {
        moved.makePixels();
        copyPixels(m_pixels, m_rect.topLeft(), moved.m_pixels, moved.m_rect.topLeft(), common);
    }
    for (const QRect &fresh : QRegion(moved.m_rect) - common) {
        CanvasPart strip(m_frame, m_scale, fresh);
        strip.drawn(steps, 0, m_stepCount, threads);
        if (strip.m_pixels.isNull())
            continue;
        moved.makePixels();
        copyPixels(strip.m_pixels, fresh.topLeft(), moved.m_pixels, moved.m_rect.topLeft(), fresh);
    }
    return moved;
}

} // namespace hazelmark
