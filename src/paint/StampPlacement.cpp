#include "StampPlacement.h"

#include "Geometry.h"
#include "ParallelFor.h"

#include <algorithm>
#include <cmath>
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

/// Bands of the canvas are stamped on all processors, each segment on every band in its turn: high enough that most
/// stamps lie in one or two, many enough that the processors end together.
constexpr int kBandLines = 128;

// What there is to do besides the pixels, in pixels.
constexpr double kWorkOfStep = 1000;
constexpr double kWorkOfStamp = 1000;
constexpr double kWorkOfLine = 200;

/// Whether a stamp of the segment may reach pixels of the target: its stamps lie between the first and the last one.
bool mayReach(const StampedSegment &segment, const StampTarget &target)
{
    if (segment.centres.places.empty())
        return false;
    const auto [first, last] = std::pair(segment.centres.places.front(), segment.centres.places.back());
    const double reach = segment.painter.pointSize() / 2;
    return !(std::max(first.x, last.x) + reach < target.beginColumn ||
             std::min(first.x, last.x) - reach > target.endColumn ||
             std::max(first.y, last.y) + reach < target.beginLine ||
             std::min(first.y, last.y) - reach > target.endLine);
}

} // namespace

QSize canvasPixelSize(QSizeF frame)
{
    return QSize(int(frame.width()), int(frame.height())).expandedTo(QSize(0, 0));
}

bool isStepInside(const PaintStep &step, QSizeF frame)
{
    const auto inside = [frame](QPointF fraction) {
        const QPointF point = Geometry::convertedPointToFrameBase(fraction, frame);
        return point.x() >= 0 && point.y() >= 0 && point.x() <= frame.width() && point.y() <= frame.height();
    };
    return inside(step.start()) && inside(step.end());
}

void placeStamps(QPointF from, QPointF to, QSizeF frame, float pointSize, float pixelStep, StampCentres &centres)
{
    // Lengths in single precision, and stamps placed on the grid of single-precision numbers with y counted from
    // below: it decides how many stamps a segment gets and which pixel a centre between two pixels falls to.
    const double height = frame.height();
    const QPointF start(from.x(), height - from.y());
    const double dx = to.x() - from.x();
    const double dy = (height - to.y()) - start.y();
    const float distance = std::sqrt(float(dx * dx + dy * dy));
    const float wanted = std::ceil(distance / pixelStep);
    centres.places.clear();
    // A click gives 0 / step; not a number (0 / 0) fails the comparison too.
    const int count = wanted >= 1 ? int(std::min(wanted, kMaxStampsPerSegment)) : 1;
    const float brushes = distance / pointSize;
    const bool together = float(count) > kMostPasses * (1 + brushes);
    centres.times = together ? std::max(1, int(float(count) / (kPlacesPerBrush * brushes + kFewestPlaces))) : 1;

    const QSize size = canvasPixelSize(frame);
    const double columnsPerPoint = size.width() / frame.width();
    const double linesPerPoint = size.height() / height;
    for (int first = 0; first < count; first += centres.times) {
        const double middle = first + (centres.times - 1) / 2.0;
        const auto x = float(start.x() + dx * middle / count);
        const auto y = float(start.y() + dy * middle / count);
        centres.places.push_back({x * columnsPerPoint, size.height() - y * linesPerPoint});
    }
}

double stampingWork(const PaintStep &step, QSizeF frame, double scale, QSizeF size)
{
    const QPointF way = step.end() - step.start();
    const double length = std::hypot(way.x() * frame.width(), way.y() * frame.height());
    const double stamps = std::clamp(std::ceil(length / double(step.brushPixelStep())), 1.0, 1e4);
    const double side = double(step.pointSize()) * scale;
    const double lines = std::min(side, size.height());
    const double work = kWorkOfStep + stamps * (kWorkOfStamp + lines * (kWorkOfLine + std::min(side, size.width())));
    return std::isfinite(work) ? work : 0;
}

void stampSegments(const std::vector<StampedSegment> &segments, QImage &canvas, const std::vector<QRect> &clips,
                   int threads)
{
    const StampTarget target(canvas);
    std::vector<StampTarget> bands;
    for (const QRect &clip : clips) {
        const StampTarget part = target.part(clip);
        const int height = part.endLine - part.beginLine;
        const int count = std::max((height + kBandLines - 1) / kBandLines, threads / int(clips.size()));
        const auto lineOf = [&](int band) { return part.beginLine + int(qint64(height) * band / count); };
        for (int band = 0; band < count; ++band)
            bands.push_back(target.part({clip.left(), lineOf(band), clip.width(), lineOf(band + 1) - lineOf(band)}));
    }
    parallelFor(int(bands.size()), threads, [&](int band) {
        for (const StampedSegment &segment : segments) {
            if (mayReach(segment, bands[std::size_t(band)]))
                segment.painter.stamp(bands[std::size_t(band)], segment.centres);
        }
    });
}

} // namespace hazelmark
