#include "StampPlacement.h"

#include "Geometry.h"
#include "ParallelFor.h"

#include <algorithm>
#include <cmath>

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

void stampSegments(const std::vector<StampedSegment> &segments, QImage &canvas, const QRect &clip, int threads)
{
    const StampTarget target = StampTarget(canvas).part(clip);
    const int height = target.endLine - target.beginLine;
    const int bands = std::max((height + kBandLines - 1) / kBandLines, threads);
    const auto lineOf = [&](int band) { return target.beginLine + int(qint64(height) * band / bands); };
    parallelFor(bands, threads, [&](int band) {
        const QRect lines(clip.left(), lineOf(band), clip.width(), lineOf(band + 1) - lineOf(band));
        const StampTarget part = target.part(lines);
        for (const StampedSegment &segment : segments)
            segment.painter.stamp(part, segment.centres);
    });
}

} // namespace hazelmark
