#include "ViewRenderer.h"

#include "LargeMemory.h"
#include "ParallelFor.h"
#include "Renderer.h"
#include "ScaledRows.h"
#include "Utils.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace hazelmark {

namespace {

/// Cells of the blur lie on multiples of powers of two, counted from the picture's bottom left corner: what is cut out
/// begins on one, so that they lie as they do in the whole picture.
constexpr int kGrain = 256;
constexpr int kGreen = 1;
/// What the canvas for the screen may have of it beyond the picture, in pixels of the mask.
constexpr int kCanvasReach = 6;
constexpr int kBandLines = 64;
/// So many rectangles are drawn one after the other; more are drawn as one.
constexpr int kMostRects = 24;
constexpr QSize kEverywhere(1 << 30, 1 << 30);

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

/// `part` and all that a disc in it reaches.
QRect withReach(const QRect &part, QSize size, double radius)
{
    const double most = std::hypot(size.width(), size.height());
    // Cells are a twentieth of the radius at most; some of them on each side are mixed.
    const int reach = int(std::ceil(std::min(radius * 1.25, most))) + 16;
    QRect rect = part.adjusted(-reach, -reach, reach, reach) & QRect(QPoint(), size);
    rect.setLeft(rect.left() / kGrain * kGrain);
    const int below = size.height() - 1 - rect.bottom();
    rect.setBottom(size.height() - 1 - below / kGrain * kGrain);
    return rect;
}

/// Calls draw() with the bands of a rectangle.
template <typename Draw>
void inBands(const QRect &rect, int threads, const Draw &draw)
{
    parallelFor((rect.height() + kBandLines - 1) / kBandLines, threads, [&](int band) {
        draw(QRect(rect.left(), rect.top() + band * kBandLines, rect.width(), kBandLines) & rect);
    });
}

/// Which lines of a mask are 0.
std::vector<bool> emptyLines(const QImage &mask)
{
    std::vector<bool> empty(std::size_t(mask.height()));
    for (int y = 0; y < mask.height(); ++y) {
        const uchar *line = mask.constScanLine(y);
        empty[std::size_t(y)] = line[0] == 0 && std::memcmp(line, line + 1, std::size_t(mask.width() - 1)) == 0;
    }
    return empty;
}

/// Copies `rect`, which lies in both, from one picture to another of the same format. The corners say where they lie.
void copyPixels(const QImage &from, QPoint fromCorner, QImage &to, QPoint toCorner, const QRect &rect, int threads)
{
    const qsizetype pixel = to.depth() / 8;
    uchar *const bits = to.bits(); // here, on one thread: it may detach
    inBands(rect, threads, [&](const QRect &band) {
        for (int y = band.top(); y <= band.bottom(); ++y)
            std::memcpy(bits + (y - toCorner.y()) * to.bytesPerLine() + (rect.left() - toCorner.x()) * pixel,
                        from.constScanLine(y - fromCorner.y()) + (rect.left() - fromCorner.x()) * pixel,
                        std::size_t(rect.width() * pixel));
    });
}

/// A picture of another part, with what both show.
QImage moved(const QImage &picture, QPoint corner, const QRect &part, QImage room, int threads)
{
    QImage other = makeBitmapIn(std::move(room), part.size(), picture.format());
    if (other.isNull())
        throw std::bad_alloc();
    copyPixels(picture, corner, other, part.topLeft(), QRect(corner, picture.size()) & part, threads);
    return other;
}

/// The green of `rect` of a canvas, of which `pixels` begin at `corner`; premultiplied, what stands there over black.
QImage greenOf(const QImage &pixels, QPoint corner, const QRect &rect, int threads)
{
    if (pixels.isNull())
        return {};
    QImage green(rect.size(), QImage::Format_Grayscale8);
    if (green.isNull())
        throw std::bad_alloc();
    uchar *const bits = green.bits(); // here, on one thread: it may detach
    inBands(rect, threads, [&](const QRect &band) {
        for (int y = band.top(); y <= band.bottom(); ++y) {
            const uchar *from = pixels.constScanLine(y - corner.y()) + 4 * qsizetype(rect.x() - corner.x()) + kGreen;
            uchar *to = bits + (y - rect.top()) * green.bytesPerLine();
            for (int x = 0; x < rect.width(); ++x)
                to[x] = from[4 * x];
        }
    });
    return green;
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

ViewPicture ViewRenderer::render(const ViewJob &job)
{
    const int threads = defaultThreadCount();
    const QRect part = job.part & QRect(QPoint(), job.size);
    if (!job.canRun() || part.isEmpty())
        return {};
    ViewJob wanted = job;
    wanted.part = part;
    ViewPicture picture{{}, job.size, part, {}, job.painting.steps};
    picture.shown = draw(wanted, threads);
    if (job.canvasScale > 1 && job.painting.steps && !job.painting.steps->empty())
        addCanvas(wanted, picture, threads);
    return picture;
}

void ViewRenderer::addCanvas(const ViewJob &job, ViewPicture &picture, int threads)
{
    const QSize canvas = CanvasPart::canvasSize(job.painting.frame, job.canvasScale);
    const QRect rect = scaled(job.part, job.size, canvas).toAlignedRect().adjusted(-1, -1, 1, 1);
    // At one scale, only what has come or moved is drawn.
    const bool isOtherScale = std::exchange(m_canvasScale, job.canvasScale) != job.canvasScale;
    if (job.isInHaste && isOtherScale)
        picture.canvas = canvasLike(job, rect & QRect(QPoint(), canvas), threads);
    picture.wasInHaste = !picture.canvas.isNull();
    if (picture.wasInHaste)
        return;
    picture.canvas = m_canvasParts.part(job.painting, job.canvasScale, rect, threads);
}

/// What the canvas looks like, made of the mask of the picture; none where that cannot be told from it.
CanvasPart ViewRenderer::canvasLike(const ViewJob &job, const QRect &rect, int threads) const
{
    const Mask &mask = m_last.mask;
    const QSize canvas = CanvasPart::canvasSize(job.painting.frame, job.canvasScale);
    const auto isGreen = [](const PaintStep &step) {
        const Color color = step.color();
        return step.eraser() || (color.red == 0 && color.green == 1 && color.blue == 0 && color.alpha == 1);
    };
    if (mask.values.isNull() || rect.isEmpty() ||
        !mask.rect.contains(PartPainter::maskReach(mask.canvas, canvas, rect)) ||
        !std::all_of(job.painting.steps->begin(), job.painting.steps->end(), isGreen))
        return {};
    QImage pixels = makeLargeBitmap(rect.size(), QImage::Format_RGBA8888_Premultiplied);
    if (pixels.isNull())
        throw std::bad_alloc();
    uchar *const bits = pixels.bits(); // here, on one thread: it may detach
    const auto [across, along] = PartPainter::axes(mask.canvas, canvas, rect);
    const GrayPixels green(mask.values, mask.rect.topLeft());
    const quint32 step = qFromBigEndian<quint32>(0x00010001); // of green and alpha
    const std::vector<bool> isEmptyLine = emptyLines(mask.values);
    inBands(rect, threads, [&, &across = across, &along = along](const QRect &band) {
        ScaledRows rows(green, across, along, band);
        for (int y = band.top(); y <= band.bottom(); ++y) {
            auto *to = reinterpret_cast<quint32 *>(bits + (y - rect.top()) * pixels.bytesPerLine());
            const auto lines = isEmptyLine.begin() - mask.rect.top();
            if (std::find(lines + along.inputBegin(y), lines + along.inputEnd(y), false) == lines + along.inputEnd(y)) {
                std::fill_n(to, rect.width(), 0U);
                continue;
            }
            const float *from = rows.row(y);
            for (int x = 0; x < rect.width(); ++x)
                to[x] = quint32(from[x] * 255 + 0.5F) * step;
        }
    });
    return CanvasPart::ofPixels(job.painting.frame, job.canvasScale, rect, pixels, job.painting.steps->size());
}

QImage ViewRenderer::draw(const ViewJob &job, int threads)
{
    const QImage source = sourceFor(job, threads);
    const float radius = Utils::sharedUtils().blurRadius(job.settings, job.size.width());
    Drawn drawn{{},
                job.size,
                job.part,
                radius > 0 ? maskFor(job, threads) : Mask(),
                source.cacheKey(),
                radius,
                job.colors.screenProfile()};
    PartPainter painter(source, job.size, job.part);
    if (!drawn.mask.values.isNull())
        painter.setMask(drawn.mask.values, drawn.mask.rect.topLeft(), drawn.mask.canvas);

    QRegion fresh = job.part;
    const Drawn &last = m_last;
    if (last.source == drawn.source && last.size == drawn.size && last.radius == drawn.radius &&
        last.screenProfile == drawn.screenProfile) {
        fresh -= last.part;
        fresh += changes(drawn.mask, last.mask, painter) & job.part;
    }
    if (fresh.isEmpty() && last.part == job.part)
        return last.shown;
    if (fresh.rectCount() > kMostRects)
        fresh = fresh.boundingRect();

    std::vector<std::vector<PartPainter::Piece>> pieces;
    for (const QRect &rect : fresh)
        pieces.push_back(painter.pieces(rect, threads));
    blur(painter, source, job, radius, pieces, threads);
    const QByteArray profile = (job.photo ? job.photo : job.reduced)->iccProfile();
    std::size_t i = 0;
    for (const QRect &rect : fresh) {
        const bool isAll = rect == job.part;
        QImage piece = painter.draw(rect, pieces[i], threads, isAll ? std::move(m_spare) : QImage());
        piece = job.colors.shown(std::move(piece), profile);
        ++i;
        if (isAll) {
            drawn.shown = std::move(piece);
            break;
        }
        if (drawn.shown.isNull())
            drawn.shown = moved(last.shown, last.part.topLeft(), job.part, std::move(m_spare), threads);
        copyPixels(piece, rect.topLeft(), drawn.shown, job.part.topLeft(), rect, threads);
    }
    if (drawn.shown.isNull())
        drawn.shown = moved(last.shown, last.part.topLeft(), job.part, std::move(m_spare), threads);
    m_spare = std::exchange(m_last, std::move(drawn)).shown;
    return m_last.shown;
}

/// The pixels that may look otherwise than with the mask before.
QRegion ViewRenderer::changes(const Mask &mask, const Mask &before, const PartPainter &painter)
{
    if (mask.values.isNull() && before.values.isNull())
        return {};
    if (mask.values.isNull() || before.values.isNull() || mask.canvas != before.canvas)
        return QRect(QPoint(), kEverywhere);
    QRegion changed;
    const QRect common = mask.rect & before.rect;
    const auto line = [&](const Mask &of, int y) {
        return of.values.constScanLine(y - of.rect.y()) + (common.x() - of.rect.x());
    };
    for (int band = common.top(); band <= common.bottom(); band += kBandLines) {
        int first = common.width();
        int last = -1;
        const int end = std::min(band + kBandLines, common.bottom() + 1);
        for (int y = band; y < end; ++y) {
            const uchar *now = line(mask, y);
            const uchar *then = line(before, y);
            if (std::memcmp(now, then, std::size_t(common.width())) == 0)
                continue;
            first = int(std::mismatch(now, now + first, then).first - now);
            int x = common.width() - 1;
            while (x > last && now[x] == then[x])
                --x;
            last = x;
        }
        if (first <= last)
            changed += painter.reachedBy({common.x() + first, band, last - first + 1, end - band});
    }
    return changed;
}

/// Sees to it that the painter has the blur of what is painted.
void ViewRenderer::blur(PartPainter &painter, const QImage &source, const ViewJob &job, float radius,
                        const std::vector<std::vector<PartPainter::Piece>> &pieces, int threads)
{
    QRect painted;
    for (const std::vector<PartPainter::Piece> &of : pieces)
        for (const PartPainter::Piece &piece : of)
            painted |= piece.painted;
    if (painted.isEmpty())
        return;
    // The same disc on the picture that it is drawn from.
    const double radiusOfSource = double(Utils::sharedUtils().blurRadius(job.settings, source.width()));
    if (KeptBlur::canKeep(source.size(), radiusOfSource)) {
        if (!m_blur || m_blurOf != source.cacheKey() || m_blur->radius() != radiusOfSource)
            m_blur = std::make_unique<KeptBlur>(source.size(), radiusOfSource);
        m_blurOf = source.cacheKey();
        painter.setBlur(*m_blur);
        QRegion cells;
        for (const std::vector<PartPainter::Piece> &of : pieces)
            cells += painter.cellsFor(of);
        m_blur->provide(cells, source, threads);
        return;
    }
    m_blur.reset();
    const QRect rect = withReach(painted, job.size, double(radius));
    const PartPainter sharp(source, job.size, rect);
    const FilterImage sight(sharp.draw(rect, sharp.pieces(rect, threads), threads));
    const QRectF wanted = fromBelow(painted.translated(-rect.topLeft()), rect.height());
    painter.setBlurred(Renderer(threads).draw(sight.clamped().discBlurred(radius).croppedTo(wanted)),
                       painted.topLeft());
}

QImage ViewRenderer::sourceFor(const ViewJob &job, int threads)
{
    const bool reducedServes = job.reduced && covers(job.reduced->pixelSize(), job.size);
    return reducedServes ? job.reduced->bitmap() : levelFor(job.photo, job.size, threads);
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

/// What of the canvas is needed for the part, and for the canvas over it.
ViewRenderer::Mask ViewRenderer::maskFor(const ViewJob &job, int threads)
{
    const auto maskReach = [&](QSize canvas) {
        const QRect reach = PartPainter::maskReach(canvas, job.size, job.part);
        return reach.adjusted(-kCanvasReach, -kCanvasReach, kCanvasReach, kCanvasReach) & QRect(QPoint(), canvas);
    };
    if (!(job.painting.scale > 1)) {
        if (job.canvas.isNull())
            return {};
        const QRect rect = maskReach(job.canvas.size());
        return {greenOf(job.canvas, {}, rect, threads), rect, job.canvas.size()};
    }
    if (!job.painting.steps || job.painting.steps->empty())
        return {};
    // No finer than what is drawn of it, but the same for many sizes: drawing it takes longer than scaling it.
    double scale = job.painting.scale;
    while (scale / 2 >= job.size.width() / job.painting.frame.width())
        scale /= 2;
    const QSize canvas = CanvasPart::canvasSize(job.painting.frame, scale);
    const QRect rect = maskReach(canvas);
    const CanvasPart &part = m_canvasParts.part(job.painting, scale, rect, threads);
    return {greenOf(part.pixels(), part.rect().topLeft(), rect, threads), rect, canvas};
}

} // namespace hazelmark
