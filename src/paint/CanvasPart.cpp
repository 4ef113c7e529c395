#include "CanvasPart.h"

#include "BrushTips.h"
#include "Geometry.h"
#include "LargeMemory.h"
#include "ParallelFor.h"
#include "StampPlacement.h"

#include <QRegion>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace hazelmark {

namespace {

/// The textures of the tips that steps ask for, one at a time: neighbours have the same.
class TextureOfStep
{
public:
    /// `texture`: the last one, which is often the next as well.
    explicit TextureOfStep(BrushTexture &texture)
        : m_texture(texture)
    {
    }

    const BrushTexture &operator()(const PaintStep &step)
    {
        if (!m_isBound || m_hardness != step.hardness()) {
            const QImage tip = BrushTips::shared().tipForHardness(step.hardness());
            if (!m_texture.isMadeFrom(tip))
                m_texture = BrushTexture(tip);
            m_hardness = step.hardness();
            m_isBound = true;
        }
        return m_texture;
    }

private:
    BrushTexture &m_texture;
    float m_hardness = 0;
    bool m_isBound = false; ///< for a step of that hardness
};

/// Around all stamps of a segment.
QRectF reachOf(QPointF from, QPointF to, double pointSize)
{
    const double reach = pointSize / 2 + 2;
    return QRectF(from, to).normalized().adjusted(-reach, -reach, reach, reach);
}

/// Around what a step of a canvas with `frame` reaches at `scale`.
QRectF reachOf(const PaintStep &step, QSizeF frame, double scale)
{
    const auto place = [&](QPointF fraction) { return Geometry::convertedPointToFrameBase(fraction, frame * scale); };
    return reachOf(place(step.start()), place(step.end()),
                   double(float(double(step.scaledTo(frame.width()).pointSize()) * scale)));
}

/// Lines that one thread copies in one go.
constexpr int kBandLines = 64;

void copyPixels(const QImage &from, QPoint fromCorner, QImage &to, QPoint toCorner, const QRect &rect, int threads)
{
    uchar *const bits = to.bits(); // here, on one thread: it may detach
    parallelFor((rect.height() + kBandLines - 1) / kBandLines, threads, [&](int band) {
        const int end = std::min((band + 1) * kBandLines, rect.height());
        for (int y = rect.top() + band * kBandLines; y < rect.top() + end; ++y)
            std::memcpy(bits + (y - toCorner.y()) * to.bytesPerLine() + 4 * qsizetype(rect.left() - toCorner.x()),
                        from.constScanLine(y - fromCorner.y()) + 4 * qsizetype(rect.left() - fromCorner.x()),
                        std::size_t(rect.width()) * 4);
    });
}

/// What steps reach is told in so many pieces: that of a slanting stroke is much less than the rectangle around it.
constexpr int kPieces = 8;

} // namespace

CanvasPart::CanvasPart(QSizeF frame, double scale, const QRect &rect)
    : m_frame(frame)
    , m_scale(scale)
    , m_rect(rect & QRect(QPoint(), canvasSize(frame, scale)))
{
}

CanvasPart CanvasPart::ofPixels(QSizeF frame, double scale, const QRect &rect, const QImage &pixels,
                                std::size_t stepCount)
{
    CanvasPart part(frame, scale, rect);
    Q_ASSERT(part.m_rect.size() == pixels.size());
    part.m_pixels = pixels;
    part.m_stepCount = stepCount;
    return part;
}

QSize CanvasPart::canvasSize(QSizeF frame, double scale)
{
    return canvasPixelSize(frame * scale);
}

void CanvasPart::makePixels()
{
    makePixels({});
}

/// Transparent ones, but for `unset`.
void CanvasPart::makePixels(const QRect &unset)
{
    if (!m_pixels.isNull())
        return;
    m_pixels = makeLargeBitmap(m_rect.size(), QImage::Format_RGBA8888_Premultiplied);
    if (m_pixels.isNull())
        throw std::bad_alloc();
    uchar *const bits = m_pixels.bits();
    for (const QRect &rect : QRegion(m_rect) - unset)
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            std::memset(bits + (y - m_rect.y()) * m_pixels.bytesPerLine() + 4 * qsizetype(rect.x() - m_rect.x()), 0,
                        std::size_t(rect.width()) * 4);
}

bool CanvasPart::isOf(const PaintStepList &steps, const PaintStepList &drawn) const
{
    return m_stepCount <= steps.size() && m_stepCount <= drawn.size() &&
           (&steps == &drawn || std::equal(drawn.begin(), drawn.begin() + std::ptrdiff_t(m_stepCount), steps.begin()));
}

bool CanvasPart::isAheadOf(const PaintStepList &steps, const PaintStepList &drawn) const
{
    return steps.size() < m_stepCount && m_stepCount <= drawn.size() &&
           std::equal(steps.begin(), steps.end(), drawn.begin());
}

/// The pixels that steps may have changed, in rectangles that do not overlap.
std::vector<QRect> CanvasPart::reached(const PaintStepList &steps, std::size_t from, std::size_t to) const
{
    std::vector<QRect> reaches;
    QRect all;
    for (std::size_t i = from; i < to; ++i) {
        const QRectF reach = reachOf(steps[i], m_frame, m_scale) & QRectF(m_rect);
        if (reach.isEmpty() || !isStepInside(steps[i], m_frame))
            continue;
        reaches.push_back(reach.toAlignedRect() & m_rect);
        all |= reaches.back();
    }
    std::vector<QRect> pieces;
    const bool isWide = all.width() > all.height();
    for (int i = 0; i < kPieces; ++i) {
        QRect piece = all;
        const int length = isWide ? all.width() : all.height();
        const int begin = length * i / kPieces;
        const int end = length * (i + 1) / kPieces;
        if (isWide)
            piece = {all.x() + begin, all.y(), end - begin, all.height()};
        else
            piece = {all.x(), all.y() + begin, all.width(), end - begin};
        QRect touched;
        for (const QRect &reach : reaches)
            touched |= reach & piece;
        if (!touched.isEmpty())
            pieces.push_back(touched);
    }
    return pieces;
}

void CanvasPart::takeBack(const PaintStepList &drawn, std::size_t count, const CanvasSnapshots::Snapshot &from,
                          int threads)
{
    const std::size_t before = std::exchange(m_stepCount, count);
    if (m_pixels.isNull())
        return;
    const std::vector<QRect> pieces = reached(drawn, count, before);
    for (const QRect &piece : pieces) {
        if (!from.pixels.isNull()) {
            copyPixels(from.pixels, m_rect.topLeft(), m_pixels, m_rect.topLeft(), piece, threads);
            continue;
        }
        for (int y = piece.top(); y <= piece.bottom(); ++y)
            std::memset(m_pixels.scanLine(y - m_rect.y()) + 4 * (piece.x() - m_rect.x()), 0,
                        std::size_t(piece.width()) * 4);
    }
    this->drawn(drawn, from.steps, count, pieces, threads);
}

QRect CanvasPart::drawOn(const PaintStepList &steps, std::size_t count, int threads)
{
    const std::size_t from = std::min(m_stepCount, count);
    m_stepCount = count;
    return isNull() ? QRect() : drawn(steps, from, count, {m_rect}, threads);
}

double CanvasPart::workOf(const PaintStep &step) const
{
    if (!isStepInside(step, m_frame) || !reachOf(step, m_frame, m_scale).intersects(m_rect))
        return 0;
    return stampingWork(step.scaledTo(m_frame.width()), m_frame, m_scale, m_rect.size());
}

/// Draws steps in the rectangles `within`, which do not overlap.
QRect CanvasPart::drawn(const PaintStepList &steps, std::size_t from, std::size_t to, const std::vector<QRect> &within,
                        int threads)
{
    const QSizeF frame = m_frame * m_scale;
    TextureOfStep textureOf(m_texture);
    std::vector<StampedSegment> segments;
    std::vector<QRect> clips = within;
    for (QRect &clip : clips)
        clip.translate(-m_rect.topLeft());
    std::size_t stamps = 0;
    QRectF touched;
    const auto stamp = [&] {
        if (segments.empty())
            return;
        makePixels();
        stampSegments(segments, m_pixels, clips, threads);
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
        const QRectF reach = reachOf(start, end, double(pointSize));
        if (std::none_of(within.begin(), within.end(), [&](const QRect &rect) { return reach.intersects(rect); }))
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
        moved.makePixels(common);
        copyPixels(m_pixels, m_rect.topLeft(), moved.m_pixels, moved.m_rect.topLeft(), common, threads);
    }
    for (const QRect &fresh : QRegion(moved.m_rect) - common) {
        CanvasPart strip(m_frame, m_scale, fresh);
        strip.drawn(steps, 0, m_stepCount, {fresh}, threads);
        if (strip.m_pixels.isNull())
            continue;
        moved.makePixels();
        copyPixels(strip.m_pixels, fresh.topLeft(), moved.m_pixels, moved.m_rect.topLeft(), fresh, threads);
    }
    return moved;
}

} // namespace hazelmark
