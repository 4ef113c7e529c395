#include "ViewRenderer.h"

#include "ParallelFor.h"
#include "Renderer.h"
#include "Utils.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

/// Cells of the blur lie on multiples of powers of two, counted from the picture's bottom left corner: what is cut out
/// begins on one, so that they lie as they do in the whole picture.
constexpr int kGrain = 256;
/// What interpolation between pixels of a mask reaches beyond them.
constexpr int kMaskReach = 4;
constexpr int kGreen = 1;

/// `rect` of a picture of the height `height`, counted from the bottom.
QRectF fromBelow(const QRectF &rect, double height)
{
    return {rect.x(), height - rect.y() - rect.height(), rect.width(), rect.height()};
}

QRectF scaled(const QRectF &rect, QSizeF from, QSizeF to)
{
    const double x = to.width() / from.width();
    const double y = to.height() / from.height();
    return {rect.x() * x, rect.y() * y, rect.width() * x, rect.height() * y};
}

/// The pixels of `picture` in `rect` without a copy; `picture` outlives it.
QImage cutOut(const QImage &picture, const QRect &rect)
{
    return {picture.constScanLine(rect.y()) + qsizetype(rect.x()) * (picture.depth() / 8), rect.width(), rect.height(),
            picture.bytesPerLine(), picture.format()};
}

/// `part` and all that a disc in it reaches, cut on multiples of `grain`.
QRect withReach(const QRect &part, QSize size, double radius, int grain)
{
    const double most = std::hypot(size.width(), size.height());
    // Cells are a twentieth of the radius at most; some of them on each side are mixed.
    const int reach = radius > 0 ? int(std::ceil(std::min(radius * 1.25, most))) + 16 : 0;
    QRect rect = part.adjusted(-reach, -reach, reach, reach) & QRect(QPoint(), size);
    rect.setLeft(rect.left() / grain * grain);
    const int below = size.height() - 1 - rect.bottom();
    rect.setBottom(size.height() - 1 - below / grain * grain);
    return rect;
}

/// Scales `rect` of the picture that measures `size` out of `source`.
FilterImage scaledPart(const QImage &source, const QRectF &sourceRect, QSize to)
{
    return FilterImage(source).drawnInto(to, QRectF(QPointF(), QSizeF(to)), fromBelow(sourceRect, source.height()));
}

bool covers(QSize pixels, QSize size)
{
    return pixels.width() >= size.width() && pixels.height() >= size.height();
}

} // namespace

bool ViewJob::canRun() const
{
    return (photo && photo->isValid()) || (reduced && covers(reduced->pixelSize(), size));
}

ViewPicture ViewRenderer::render(const ViewJob &job, int threads)
{
    if (threads <= 0)
        threads = defaultThreadCount();
    const QRect part = job.part & QRect(QPoint(), job.size);
    if (!job.canRun() || part.isEmpty())
        return {};
    ViewJob wanted = job;
    wanted.part = part;
    ViewPicture picture{{}, job.size, part, {}, job.painting.steps};
    const QByteArray profile = (job.photo ? job.photo : job.reduced)->iccProfile();
    picture.shown = job.colors.shown(draw(wanted, threads), profile);
    if (job.canvasScale > 1 && job.painting.steps && !job.painting.steps->empty()) {
        const QSize canvas = CanvasPart::canvasSize(job.painting.frame, job.canvasScale);
        picture.canvas =
            m_canvasParts.part(job.painting, job.canvasScale,
                               scaled(part, job.size, canvas).toAlignedRect().adjusted(-1, -1, 1, 1), threads);
    }
    return picture;
}

QImage ViewRenderer::draw(const ViewJob &job, int threads)
{
    const bool painted =
        job.painting.scale > 1 ? job.painting.steps && !job.painting.steps->empty() : !job.canvas.isNull();
    const float radius = painted ? Utils::sharedUtils().blurRadius(job.settings, job.size.width()) : 0.0f;
    const Sight sight = sightOf(job, double(radius), threads);
    const QRectF part = fromBelow(job.part.translated(-sight.rect.topLeft()), sight.rect.height());
    const FilterImage inFocus(sight.pixels);
    if (!(radius > 0.0f))
        return Renderer(threads).draw(inFocus.croppedTo(part));
    const FilterImage blurred = inFocus.clamped().discBlurred(radius);
    const FilterImage mask = maskFor(job, sight.rect, threads);
    return Renderer(threads).draw(FilterImage::blendWithMask(blurred, inFocus, mask).croppedTo(part));
}

ViewRenderer::Sight ViewRenderer::sightOf(const ViewJob &job, double radius, int threads)
{
    const bool reducedServes = job.reduced && covers(job.reduced->pixelSize(), job.size);
    const QImage source = reducedServes ? job.reduced->bitmap() : levelFor(job.photo, job.size, threads);
    if (source.size() == job.size) {
        const QRect rect = withReach(job.part, job.size, radius, kGrain);
        return {cutOut(source, rect), rect};
    }
    const QRect rect = withReach(job.part, job.size, radius, 1);
    return {Renderer(threads).draw(scaledPart(source, scaled(rect, job.size, source.size()), rect.size())), rect};
}

/// The photo at the smallest half of a half ... of its size that is no smaller than `size`.
QImage ViewRenderer::levelFor(const PhotoImagePtr &photo, QSize size, int threads)
{
    const QImage full = photo->bitmap();
    const auto half = [](QSize whole) { return QSize((whole.width() + 1) / 2, (whole.height() + 1) / 2); };
    if (m_levelOf.lock() != photo || !covers(m_level.size(), size) || !covers(half(full.size()), size))
        m_level = {};
    m_levelOf = photo;
    QImage level = m_level.isNull() ? full : m_level;
    while (covers(half(level.size()), size))
        level = Renderer(threads).draw(scaledPart(level, level.rect(), half(level.size())));
    m_level = level.size() == full.size() ? QImage() : level;
    return level;
}

FilterImage ViewRenderer::maskFor(const ViewJob &job, const QRect &rect, int threads)
{
    if (!(job.painting.scale > 1)) {
        // Over black, the green of premultiplied pixels is what stands there.
        const QImage &canvas = job.canvas;
        const QImage green(canvas.constBits(), canvas.width(), canvas.height(), canvas.bytesPerLine(),
                           QImage::Format_RGBX8888);
        return scaledPart(green, scaled(rect, job.size, canvas.size()), rect.size());
    }
    // No finer than what is drawn of it.
    const double scale = std::min(job.painting.scale, job.size.width() / job.painting.frame.width());
    const QSize canvas = CanvasPart::canvasSize(job.painting.frame, scale);
    const auto reached = [&](const QRect &of) {
        return scaled(of, job.size, canvas).toAlignedRect().adjusted(-kMaskReach, -kMaskReach, kMaskReach, kMaskReach) &
               QRect(QPoint(), canvas);
    };
    const QRect whole = reached(rect);
    QImage mask(whole.size(), QImage::Format_Grayscale8);
    if (mask.isNull())
        throw std::bad_alloc();
    mask.fill(0);
    const CanvasPart &part = m_canvasParts.part(job.painting, scale, reached(job.part), threads);
    const QRect common = part.pixels().isNull() ? QRect() : part.rect() & whole;
    for (int y = common.top(); y <= common.bottom(); ++y) {
        const uchar *from =
            part.pixels().constScanLine(y - part.rect().y()) + 4 * (common.x() - part.rect().x()) + kGreen;
        uchar *to = mask.scanLine(y - whole.y()) + (common.x() - whole.x());
        for (int x = 0; x < common.width(); ++x)
            to[x] = from[4 * x];
    }
    return scaledPart(mask, scaled(rect, job.size, canvas).translated(-whole.topLeft()), rect.size());
}

} // namespace hazelmark
