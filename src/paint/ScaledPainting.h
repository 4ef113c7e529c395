#pragma once

#include "PaintStep.h"

#include <QImage>
#include <QSizeF>

#include <memory>

namespace hazelmark {

/// A painting as data, with the scale at which it is to be drawn so that it is as fine as it was painted. A value; any
/// thread, as long as nobody adds to the list meanwhile.
struct ScaledPainting
{
    /// Larger canvases are not drawn: a mask would be a gigabyte of pixels or more.
    static constexpr double kLargestSide = 32767;
    static constexpr double kMostPixels = 1 << 28;

    /// The largest scale at which a canvas of `frame` has no more pixels than a photo of `photo` pixels, or than are
    /// drawn; at least 1.
    static double largestScale(QSizeF frame, QSizeF photo);

    std::shared_ptr<const PaintStepList> steps;
    QSizeF frame;     ///< of the canvas, in points
    double scale = 1; ///< how many times as large the canvas is drawn

    /// The mask that the painting gives, Format_Grayscale8: the green of the canvas. It is drawn band by band, so that
    /// only a few of them are ever there as a canvas. Null for an empty frame; throws std::bad_alloc.
    QImage mask() const;
};

} // namespace hazelmark
