#pragma once

#include "CanvasParts.h"
#include "CoreFilterObject.h"
#include "DisplayColors.h"
#include "PhotoImage.h"
#include "ScaledPainting.h"

#include <QImage>
#include <QRect>
#include <QSize>

#include <memory>
#include <vector>

namespace hazelmark {

/// A picture of what is in sight of the photo.
struct ViewJob
{
    PhotoImagePtr photo;   ///< in full size; null as long as it is not there
    PhotoImagePtr reduced; ///< a smaller one, which serves as far as it reaches
    QSize size;            ///< of the whole photo in the picture, in pixels; no larger than it is
    QRect part;            ///< of that: what is wanted; origin top left
    CoreFilterObject settings;
    ScaledPainting painting;
    /// The canvas at its own size, RGBA8888 premultiplied: the mask of a painting of scale 1. Null where nothing is
    /// painted.
    QImage canvas;
    double canvasScale = 1; ///< at which the canvas itself is wanted for the screen; not above 1 for not at all
    DisplayColors colors;

    /// Whether there is a photo that has the pixels.
    bool canRun() const;
};

struct ViewPicture
{
    QImage shown; ///< `part` in the colours of the screen; null for a job that cannot run
    QSize size;
    QRect part;
    CanvasPart canvas; ///< the canvas over that part, if it was wanted; with all steps of the job
    std::shared_ptr<const PaintStepList> steps; ///< of the job
};

/// Draws what an export would show of a part of the photo: the photo scaled to a size, blurred by the radius of that
/// size where it is painted. In full size these are the very pixels of the export, but for the darkening.
///
/// Keeps, from one picture to the next, the photo at a power of two of its size and the canvas as it was needed last.
/// One thread at a time.
class ViewRenderer
{
public:
    /// Throws std::bad_alloc.
    ViewPicture render(const ViewJob &job, int threads = 0);

private:
    struct Sight
    {
        QImage pixels;
        QRect rect; ///< what `pixels` shows of the photo: the part and what its blur reaches
    };
    QImage draw(const ViewJob &job, int threads);
    Sight sightOf(const ViewJob &job, double radius, int threads);
    QImage levelFor(const PhotoImagePtr &photo, QSize size, int threads);
    FilterImage maskFor(const ViewJob &job, const QRect &rect, int threads);

    std::weak_ptr<PhotoImage> m_levelOf;
    QImage m_level;
    CanvasParts m_canvasParts;
};

} // namespace hazelmark
