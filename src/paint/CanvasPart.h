#pragma once

#include "BrushTexture.h"
#include "CanvasSnapshots.h"
#include "PaintStep.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QSizeF>

#include <cstddef>
#include <vector>

namespace hazelmark {

/// The pixels that a rectangle of a canvas has at a scale: what can be seen of a painting while one is close to it, or
/// a band of it on its way into a file. Needs no canvas, only the steps; sizes of steps are in points of the frame, and
/// a pixel gets what the same steps give it on a canvas of the whole size.
///
/// A value that shares its pixels. Any thread.
class CanvasPart
{
public:
    /// Shows nothing.
    CanvasPart() = default;
    /// `rect`: in pixels of the canvas, whose frame measures `frame` times `scale` points; clipped to it.
    CanvasPart(QSizeF frame, double scale, const QRect &rect);

    /// What has the first `stepCount` steps already: `pixels`, as large as `rect`.
    static CanvasPart ofPixels(QSizeF frame, double scale, const QRect &rect, const QImage &pixels,
                               std::size_t stepCount);

    /// The pixels of the whole canvas.
    static QSize canvasSize(QSizeF frame, double scale);

    bool isNull() const { return m_rect.isEmpty(); }
    QSizeF frame() const { return m_frame; }
    double scale() const { return m_scale; }
    const QRect &rect() const { return m_rect; }
    /// Format_RGBA8888_Premultiplied, as large as rect(); null while nothing is drawn in it.
    const QImage &pixels() const { return m_pixels; }
    /// How many steps are drawn.
    std::size_t stepCount() const { return m_stepCount; }

    /// Whether what is drawn, the first stepCount() of `drawn`, is how `steps` begin: then drawOn() brings it up to
    /// them.
    bool isOf(const PaintStepList &steps, const PaintStepList &drawn) const;

    /// Whether `steps` are what is drawn, the first stepCount() of `drawn`, without some at the end: then takeBack()
    /// brings it back to them.
    bool isAheadOf(const PaintStepList &steps, const PaintStepList &drawn) const;

    /// Goes back to the first `count` of the steps that are drawn, which `drawn` begins with: draws anew what the
    /// others reach, beginning with `from`, which is this part with no more steps. Throws std::bad_alloc.
    void takeBack(const PaintStepList &drawn, std::size_t count, const CanvasSnapshots::Snapshot &from, int threads);

    /// Draws what has come to a list since: the steps from stepCount() on, up to number `count`. Gives the rectangle,
    /// in pixels of the canvas, in which something may have changed. Throws std::bad_alloc.
    QRect drawOn(const PaintStepList &steps, std::size_t count, int threads);
    QRect drawOn(const PaintStepList &steps, int threads) { return drawOn(steps, steps.size(), threads); }
    /// What it takes to draw a step, as stampingWork() counts.
    double workOf(const PaintStep &step) const;

    /// Another rectangle of the same canvas with the same steps, the first stepCount() of `steps`. What both show is
    /// taken over, the rest is drawn. Throws std::bad_alloc.
    CanvasPart movedTo(const QRect &rect, const PaintStepList &steps, int threads) const;

private:
    QRect drawn(const PaintStepList &steps, std::size_t from, std::size_t to, const std::vector<QRect> &within,
                int threads);
    std::vector<QRect> reached(const PaintStepList &steps, std::size_t from, std::size_t to) const;
    void makePixels();
    void makePixels(const QRect &unset);

    QSizeF m_frame;
    double m_scale = 1;
    QRect m_rect;
    QImage m_pixels;
    BrushTexture m_texture; ///< used last
    std::size_t m_stepCount = 0;
};

} // namespace hazelmark
