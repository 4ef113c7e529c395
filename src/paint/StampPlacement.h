#pragma once

#include "PaintStep.h"
#include "StampPainter.h"

#include <QImage>
#include <QSize>
#include <QSizeF>

#include <vector>

namespace hazelmark {

/// A segment that is ready to be stamped: its brush and the places.
struct StampedSegment
{
    StampPainter painter;
    StampCentres centres;
};

/// The pixels of a canvas whose frame measures `frame` points: the truncated size, empty when the frame is.
QSize canvasPixelSize(QSizeF frame);

/// Whether both ends of the step lie in the frame. A step that leaves it is never drawn.
bool isStepInside(const PaintStep &step, QSizeF frame);

/// Places the stamps of a segment between two points of the frame (origin top left), in pixels of the canvas. The
/// start is stamped, the end is left to the segment that goes on from there. `pointSize` and `pixelStep` in points.
void placeStamps(QPointF from, QPointF to, QSizeF frame, float pointSize, float pixelStep, StampCentres &centres);

/// How much work stamping a step is on a canvas that is drawn `scale` times as large as its frame, where `size` pixels
/// are drawn of it: as many of its pixels could be stamped in the same time, each some tenths of a nanosecond.
double stampingWork(const PaintStep &step, QSizeF frame, double scale, QSizeF size);

/// How many stamps are placed before they are drawn; bounds what drawing many steps takes besides the canvas.
inline constexpr std::size_t kStampsAtOnce = 1 << 15;

/// Stamps the segments in their order, inside the rectangles `clips`, which do not overlap, on up to `threads`
/// processors. The result does not depend on how many.
void stampSegments(const std::vector<StampedSegment> &segments, QImage &canvas, const std::vector<QRect> &clips,
                   int threads);

} // namespace hazelmark
