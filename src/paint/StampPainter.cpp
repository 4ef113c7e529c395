#include "StampPainter.h"

#include "kernels/StampRow.h"

#include <algorithm>
#include <cmath>

namespace hazelmark {

namespace {

// Not std::clamp, which lets a not-a-number through.
float fraction(double component)
{
    return component > 0 ? float(std::min(component, 1.0)) : 0.0F;
}

/// The pixels 0..size-1 (or begin..size-1) whose centres lie in [low, high).
struct Span
{
    int begin;
    int end;
};

Span coveredPixels(double low, double high, int size, int begin = 0)
{
    const auto clipped = [=](double value) {
        return int(std::clamp(std::ceil(value - 0.5), double(begin), double(size)));
    };
    return {clipped(low), clipped(high)};
}

kernels::StampRow::Spacing spacingOf(double texelsPerColumn)
{
    using Spacing = kernels::StampRow::Spacing;
    if (texelsPerColumn < 0.999)
        return Spacing::Dense;
    return texelsPerColumn < 1.999 ? Spacing::Near : Spacing::Wide;
}

/// The tip's columns as the pixels of one stamp see them: the same for every line.
class StampColumns
{
public:
    /// For the pixels `span` of a stamp that begins at `left`, and some more behind them.
    void place(Span span, double left, double texelsPerColumn, int texels)
    {
        const int count = span.end - span.begin + kernels::kMaxStampLanes;
        m_begin = span.begin;
        m_texel.resize(std::size_t(count));
        m_fraction.resize(std::size_t(count));
        for (int i = 0; i < count; ++i) {
            const double place = (span.begin + i + 0.5 - left) * texelsPerColumn - 0.5;
            const double inside = std::clamp(place, 0.0, double(texels - 1));
            m_texel[std::size_t(i)] = std::int32_t(inside);
            m_fraction[std::size_t(i)] = float(inside - std::int32_t(inside));
        }
    }

    const std::int32_t *texels(int column) const { return m_texel.data() + (column - m_begin); }
    const float *fractions(int column) const { return m_fraction.data() + (column - m_begin); }

private:
    int m_begin = 0;
    std::vector<std::int32_t> m_texel;
    std::vector<float> m_fraction;
};

/// One height of the tip, mixed of the two rows of texels next to it.
class TipRow
{
public:
    TipRow(const BrushTexture::Texels &texels, double texelsPerColumn)
        : m_texels(texels)
        , m_texelsPerColumn(texelsPerColumn)
        , m_stride(std::size_t(texels.width + kernels::StampRow::kPadding))
        , m_samples(m_stride * std::size_t(texels.planes))
    {
    }

    /// Mixes the row at `place` (row i of texels is at i). False when nothing is covered there.
    bool mix(double place)
    {
        const double inside = std::clamp(place, 0.0, double(m_texels.height - 1));
        const int upper = int(inside);
        const int lower = std::min(upper + 1, m_texels.height - 1);
        const auto share = float(inside - upper);
        const auto [upperFirst, upperLast] = m_texels.covered[std::size_t(upper)];
        const auto [lowerFirst, lowerLast] = m_texels.covered[std::size_t(lower)];
        const int first = std::min(upperFirst, lowerFirst);
        const int last = std::max(upperLast, lowerLast);
        if (first > last)
            return false;
        // With the uncovered neighbours, towards which the interpolation falls off to 0.
        m_first = std::max(first - 1, 0);
        m_last = std::min(last + 1, m_texels.width - 1);
        // As far as the pixels reach that pixels() adds.
        const double reach = std::max(kernels::kMaxStampLanes * m_texelsPerColumn, double(kernels::StampRow::kPadding));
        const auto zeros = std::size_t(std::min(std::ceil(reach), double(m_stride) - m_last - 1));
        for (int plane = 0; plane < m_texels.planes; ++plane) {
            float *mixed = m_samples.data() + std::size_t(plane) * m_stride;
            kernels::mixRows(m_texels.row(plane, upper) + m_first, m_texels.row(plane, lower) + m_first, share,
                             mixed + m_first, m_last - m_first + 1);
            std::fill_n(mixed + m_last + 1, zeros, 0.0F);
        }
        return true;
    }

    /// The pixels that the last mix covers, of a stamp that begins at `left`. Where the target's width allows, they
    /// go on to a whole number of blocks: pixels behind the covered ones sample 0 and stay as they are.
    Span pixels(double left, Span columns) const
    {
        const double columnsPerTexel = 1 / m_texelsPerColumn;
        const bool reachesEnd = m_last == m_texels.width - 1;
        const double begin = m_first > 0 ? (m_first + 0.5) * columnsPerTexel : 0;
        const double end = (reachesEnd ? m_texels.width : m_last + 0.5) * columnsPerTexel;
        Span span = coveredPixels(left + begin, left + end, columns.end, columns.begin);
        if (!reachesEnd) {
            const int blocks = (span.end - span.begin + kernels::kMaxStampLanes - 1) / kernels::kMaxStampLanes;
            span.end = std::min(span.begin + blocks * kernels::kMaxStampLanes, columns.end);
        }
        return span;
    }

    std::array<const float *, 4> planes() const
    {
        std::array<const float *, 4> rows{};
        for (std::size_t plane = 0; plane < 4; ++plane)
            rows[plane] = m_samples.data() + (m_texels.planes == 4 ? plane * m_stride : 0);
        return rows;
    }

private:
    const BrushTexture::Texels &m_texels;
    double m_texelsPerColumn;
    std::size_t m_stride;
    std::vector<float> m_samples;
    int m_first = 0;
    int m_last = 0;
};

} // namespace

StampTarget::StampTarget(QImage &image)
    : bits(image.bits())
    , stride(image.bytesPerLine())
    , beginColumn(0)
    , endColumn(image.width())
    , beginLine(0)
    , endLine(image.height())
{
}

StampTarget StampTarget::part(const QRect &rect) const
{
    StampTarget part = *this;
    part.beginColumn = std::clamp(rect.left(), beginColumn, endColumn);
    part.endColumn = std::clamp(rect.left() + rect.width(), part.beginColumn, endColumn);
    part.beginLine = std::clamp(rect.top(), beginLine, endLine);
    part.endLine = std::clamp(rect.top() + rect.height(), part.beginLine, endLine);
    return part;
}

StampPainter::StampPainter(Mode mode, const Color &color, float pointSize, const BrushTexture &texture)
    : m_pointSize(pointSize)
{
    if (std::isfinite(pointSize) && pointSize > 0)
        m_texels = texture.texels();
    if (mode == Mode::Paint) {
        m_alpha = fraction(color.alpha);
        m_addend = {255 * fraction(color.red), 255 * fraction(color.green), 255 * fraction(color.blue), 255 * m_alpha};
    }
}

QRect StampPainter::stamp(const StampTarget &target, const StampCentres &centres) const
{
    if (!m_texels)
        return {};
    const double texelsPerColumn = m_texels->width / m_pointSize;
    const double texelsPerLine = m_texels->height / m_pointSize;
    TipRow tip(*m_texels, texelsPerColumn);
    StampColumns stampColumns;
    kernels::StampRow row{};
    row.tip = tip.planes();
    row.white = m_texels->planes == 1;
    row.spacing = spacingOf(texelsPerColumn);
    row.addend = m_addend;
    row.alpha = m_alpha;
    row.times = centres.times;

    QRect touched;
    for (const StampCentre &centre : centres.places) {
        if (!std::isfinite(centre.x) || !std::isfinite(centre.y))
            continue;
        const double left = centre.x - m_pointSize / 2;
        const double top = centre.y - m_pointSize / 2;
        const Span columns = coveredPixels(left, left + m_pointSize, target.endColumn, target.beginColumn);
        const Span lines = coveredPixels(top, top + m_pointSize, target.endLine, target.beginLine);
        if (columns.begin >= columns.end || lines.begin >= lines.end)
            continue;
        stampColumns.place(columns, left, texelsPerColumn, m_texels->width);
        for (int line = lines.begin; line < lines.end; ++line) {
            if (!tip.mix((line + 0.5 - top) * texelsPerLine - 0.5))
                continue;
            const Span span = tip.pixels(left, {target.beginColumn, target.endColumn});
            row.texel = stampColumns.texels(span.begin);
            row.fraction = stampColumns.fractions(span.begin);
            kernels::blendStampRow(target.bits + line * target.stride + 4 * qsizetype(span.begin),
                                   span.end - span.begin, row);
        }
        touched |= QRect(QPoint(columns.begin, lines.begin), QPoint(columns.end - 1, lines.end - 1));
    }
    return touched;
}

} // namespace hazelmark
