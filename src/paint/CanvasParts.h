#pragma once

#include "CanvasPart.h"
#include "CanvasSnapshots.h"
#include "ScaledPainting.h"

#include <QRect>

#include <memory>
#include <vector>

namespace hazelmark {

/// The parts of a painting's canvas that are wanted again and again, each a little different from the last time: moved,
/// with some strokes more, or without some. Keeps the last two, so that only what differs is drawn. One thread at a
/// time.
class CanvasParts
{
public:
    /// The pixels in `rect` of the canvas at `scale`, with all steps of the painting; there may be some more around
    /// them. Valid until the next one is asked for. Throws std::bad_alloc.
    const CanvasPart &part(const ScaledPainting &painting, double scale, const QRect &rect, int threads);

private:
    struct Kept
    {
        CanvasPart part;
        std::shared_ptr<const PaintStepList> steps; ///< that it was drawn from
        CanvasSnapshots snapshots;
        double work = 0; ///< that is in `part`
    };
    static void takeBack(Kept &kept, std::size_t count, int threads);
    static void move(Kept &kept, const QRect &rect, int threads);
    static void drawOn(Kept &kept, int threads);

    std::vector<Kept> m_kept; ///< the last first
};

} // namespace hazelmark
