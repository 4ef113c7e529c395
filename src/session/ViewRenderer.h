#pragma once

#include "CanvasParts.h"
#include "CoreFilterObject.h"
#include "DisplayColors.h"
#include "PartPainter.h"
#include "PhotoImage.h"
#include "ScaledPainting.h"

#include <QImage>
#include <QRect>
#include <QRegion>
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
    bool isInHaste = false; ///< a canvas as it looks will do, where one from the steps takes longer

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
    bool wasInHaste = false;                    ///< the canvas is one that looks like it
};

/// Draws what an export would show of a part of the photo: the photo scaled to a size, blurred by the radius of that
/// size where it is painted. In full size these are the very pixels of the export, but for the darkening.
///
/// Keeps, from one picture to the next, what may serve again: the picture itself, of which only what has come into
/// sight or was painted over is drawn anew; the photo at a power of two of its size; the blur of what was in sight; the
/// canvas as it was needed. A picture has the same pixels whatever was drawn before it. One thread at a time.
class ViewRenderer
{
public:
    /// Throws std::bad_alloc.
    ViewPicture render(const ViewJob &job);

private:
    /// The green of a part of the canvas.
    struct Mask
    {
        QImage values; ///< Format_Grayscale8; null where nothing is painted
        QRect rect;    ///< of the canvas
        QSize canvas;
    };
    /// What the last picture shows, and of what.
    struct Drawn
    {
        QImage shown;
        QSize size;
        QRect part;
        Mask mask;
        qint64 source = 0;
        float radius = 0;
        QByteArray screenProfile;
    };

    QImage draw(const ViewJob &job, int threads);
    void addCanvas(const ViewJob &job, ViewPicture &picture, int threads);
    CanvasPart canvasLike(const ViewJob &job, const QRect &rect, int threads) const;
    QImage sourceFor(const ViewJob &job, int threads);
    void blur(PartPainter &painter, const QImage &source, const ViewJob &job, float radius,
              const std::vector<std::vector<PartPainter::Piece>> &pieces, int threads);
    QImage levelFor(const PhotoImagePtr &photo, QSize size, int threads);
    Mask maskFor(const ViewJob &job, int threads);

    static QRegion changes(const Mask &mask, const Mask &before, const PartPainter &painter);

    Drawn m_last;
    QImage m_spare; ///< the picture before, whose memory the next one takes when the screen has let go of it

    std::weak_ptr<PhotoImage> m_levelOf;
    QImage m_level;
    CanvasParts m_canvasParts;
    double m_canvasScale = 0; ///< at which it was wanted for the screen last

    std::unique_ptr<KeptBlur> m_blur;
    qint64 m_blurOf = 0; ///< the bitmap's cacheKey()
};

} // namespace hazelmark
