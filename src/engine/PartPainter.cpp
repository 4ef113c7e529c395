#include "PartPainter.h"

#include "LargeMemory.h"
#include "ParallelFor.h"
#include "PixelFormats.h"
#include "ScaledRows.h"
#include "kernels/InterleavedRows.h"
#include "kernels/PixelRows.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>
#include <tuple>

namespace hazelmark {

namespace {

// Wide enough that rows stream, low enough that what is drawn in one go stays in the second-level cache.
constexpr int kPieceWidth = 512;
constexpr int kPieceHeight = 64;

QRect inputsOf(const ScaleAxis &across, const ScaleAxis &along, const QRect &rect)
{
    return {QPoint(across.inputBegin(rect.left()), along.inputBegin(rect.top())),
            QPoint(across.inputEnd(rect.right()) - 1, along.inputEnd(rect.bottom()) - 1)};
}

/// The outputs from `low` to `high` that take anything of the inputs from `first` to `last`.
std::pair<int, int> outputsOf(const ScaleAxis &axis, int low, int high, int first, int last)
{
    const int *const begin = axis.first(low);
    const int *const end = begin + (high - low + 1);
    const int *const from = std::upper_bound(begin, end, first - axis.taps());
    const int *const to = std::upper_bound(begin, end, last);
    return {low + int(from - begin), low + int(to - begin) - 1};
}

bool isZero(const uchar *values, int count)
{
    quint64 any = 0;
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        quint64 word = 0;
        std::memcpy(&word, values + i, 8);
        any |= word;
    }
    for (; i < count; ++i)
        any |= values[i];
    return any == 0;
}

template <typename Sample>
void packRow(const float *pixels, uchar *line, int width)
{
    kernels::pixelRows().of<Sample>().pack(pixels, reinterpret_cast<Sample *>(line), 4 * std::size_t(width));
}

} // namespace

PartPainter::PartPainter(const QImage &source, QSize size, const QRect &part)
    : m_source(source)
    , m_size(size)
    , m_part(part)
{
    std::tie(m_across, m_along) = axes(source.size(), size, part);
}

std::pair<ScaleAxis, ScaleAxis> PartPainter::axes(QSize from, QSize size, const QRect &part)
{
    return {ScaleAxis::cubic(from.width(), size.width(), part.left(), part.width()),
            ScaleAxis::cubic(from.height(), size.height(), part.top(), part.height())};
}

QRect PartPainter::maskReach(QSize mask, QSize size, const QRect &part)
{
    const auto ends = [](int from, int to, int first, int last) {
        return std::pair(ScaleAxis::cubic(from, to, first, 1).inputBegin(first),
                         ScaleAxis::cubic(from, to, last, 1).inputEnd(last) - 1);
    };
    const auto [left, right] = ends(mask.width(), size.width(), part.left(), part.right());
    const auto [top, bottom] = ends(mask.height(), size.height(), part.top(), part.bottom());
    return {QPoint(left, top), QPoint(right, bottom)};
}

void PartPainter::setMask(const QImage &values, QPoint corner, QSize mask)
{
    m_mask = values;
    m_maskCorner = corner;
    std::tie(m_maskAcross, m_maskAlong) = axes(mask, m_size, m_part);
}

QRect PartPainter::reachedBy(const QRect &maskRect) const
{
    const auto [left, right] =
        outputsOf(m_maskAcross, m_part.left(), m_part.right(), maskRect.left(), maskRect.right());
    const auto [top, bottom] = outputsOf(m_maskAlong, m_part.top(), m_part.bottom(), maskRect.top(), maskRect.bottom());
    return {QPoint(left, top), QPoint(right, bottom)};
}

QRect PartPainter::paintedIn(const QRect &rect) const
{
    if (m_mask.isNull())
        return {};
    const QRect inputs = inputsOf(m_maskAcross, m_maskAlong, rect);
    const auto line = [&](int y) {
        return m_mask.constScanLine(y - m_maskCorner.y()) + (inputs.left() - m_maskCorner.x());
    };
    int top = inputs.top();
    int bottom = inputs.bottom();
    while (top <= bottom && isZero(line(top), inputs.width()))
        ++top;
    while (bottom > top && isZero(line(bottom), inputs.width()))
        --bottom;
    if (top > bottom)
        return {};
    const auto [first, last] = outputsOf(m_maskAlong, rect.top(), rect.bottom(), top, bottom);
    return {QPoint(rect.left(), first), QPoint(rect.right(), last)};
}

std::vector<PartPainter::Piece> PartPainter::pieces(const QRect &rect, int threads) const
{
    std::vector<Piece> pieces;
    for (int y = rect.top(); y <= rect.bottom(); y += kPieceHeight)
        for (int x = rect.left(); x <= rect.right(); x += kPieceWidth)
            pieces.push_back({QRect(x, y, kPieceWidth, kPieceHeight) & rect, {}});
    if (!m_mask.isNull())
        parallelFor(int(pieces.size()), threads, [&](int i) {
            Piece &piece = pieces[std::size_t(i)];
            piece.painted = paintedIn(piece.rect);
        });
    return pieces;
}

void PartPainter::setBlur(const KeptBlur &blur)
{
    m_cells = &blur.cells();
    const QSize from = blur.size();
    m_blurredAcross =
        ScaleAxis::columnsOfCells(blur.grid(), from.width(), m_size.width(), m_part.left(), m_part.width());
    m_blurredAlong =
        ScaleAxis::linesOfCells(blur.grid(), from.height(), m_size.height(), m_part.top(), m_part.height());
}

QRegion PartPainter::cellsFor(const std::vector<Piece> &pieces) const
{
    QRegion cells;
    for (const Piece &piece : pieces) {
        if (piece.painted.isEmpty())
            continue;
        const QRect &rect = piece.painted;
        cells += QRect(QPoint(m_blurredAcross.inputBegin(rect.left()), m_blurredAlong.inputBegin(rect.bottom())),
                       QPoint(m_blurredAcross.inputEnd(rect.right()) - 1, m_blurredAlong.inputEnd(rect.top()) - 1));
    }
    return cells;
}

void PartPainter::setBlurred(const QImage &pixels, QPoint corner)
{
    m_cells = nullptr;
    m_blurred = pixels;
    m_blurredCorner = corner;
    m_blurredAcross = ScaleAxis::plain(0, m_part.left(), m_part.width());
    m_blurredAlong = ScaleAxis::plain(0, m_part.top(), m_part.height());
}

QImage PartPainter::draw(const QRect &rect, const std::vector<Piece> &pieces, int threads, QImage room) const
{
    QImage drawn = makeBitmapIn(std::move(room), rect.size(), fourSampleFormat(m_source));
    if (drawn.isNull())
        throw std::bad_alloc();
    uchar *const bits = drawn.bits(); // here, on one thread: it may detach
    const qsizetype stride = drawn.bytesPerLine();
    const qsizetype pixel = drawn.depth() / 8;
    parallelFor(int(pieces.size()), threads, [&](int i) {
        const QPoint place = pieces[std::size_t(i)].rect.topLeft() - rect.topLeft();
        drawPiece(pieces[std::size_t(i)], bits + place.y() * stride + place.x() * pixel, stride, drawn.format());
    });
    return drawn;
}

/// Whether what is not painted are the very pixels of the source.
bool PartPainter::isCopied(QImage::Format format) const
{
    return m_across.isPlain() && m_along.isPlain() && m_source.format() == format;
}

void PartPainter::drawPiece(const Piece &piece, uchar *bits, qsizetype stride, QImage::Format format) const
{
    const QRect &rect = piece.rect;
    const QRect &painted = piece.painted;
    const BitmapPixels pixels(m_source);
    ScaledRows rows(pixels, m_across, m_along, rect);
    const GrayPixels maskPixels(m_mask, m_maskCorner);
    const BitmapPixels blurredPixels(m_blurred, m_blurredCorner);
    const std::optional<CellPixels> cells = m_cells ? std::optional<CellPixels>(*m_cells) : std::nullopt;
    std::optional<ScaledRows> mask, blurred;
    if (!painted.isEmpty()) {
        mask.emplace(maskPixels, m_maskAcross, m_maskAlong, painted);
        blurred.emplace(cells ? static_cast<const PixelSource &>(*cells) : blurredPixels, m_blurredAcross,
                        m_blurredAlong, painted);
    }
    const bool isCopied = this->isCopied(format);
    const bool isDeep = format == QImage::Format_RGBX64 || format == QImage::Format_RGBA64;
    const qsizetype pixel = isDeep ? 8 : 4;
    for (int y = rect.top(); y <= rect.bottom(); ++y, bits += stride) {
        const bool isPainted = mask && y >= painted.top() && y <= painted.bottom();
        if (isCopied && !isPainted) {
            std::memcpy(bits, m_source.constScanLine(m_along.inputBegin(y)) + m_across.inputBegin(rect.left()) * pixel,
                        std::size_t(rect.width() * pixel));
            continue;
        }
        float *const row = rows.row(y);
        if (isPainted)
            kernels::blendPixels(blurred->row(y), mask->row(y), row + 4 * qsizetype(painted.left() - rect.left()),
                                 std::size_t(painted.width()));
        if (m_source.hasAlphaChannel())
            kernels::unpremultiplyPixels(row, std::size_t(rect.width()));
        if (isDeep)
            packRow<std::uint16_t>(row, bits, rect.width());
        else
            packRow<std::uint8_t>(row, bits, rect.width());
    }
}

} // namespace hazelmark
