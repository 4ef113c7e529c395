#include "ScaledRows.h"

#include "kernels/InterleavedRows.h"
#include "kernels/ScaleRows.h"

#include <algorithm>
#include <limits>

namespace hazelmark {

namespace {

constexpr int kNoLine = std::numeric_limits<int>::min();

int padded(int width)
{
    return (width + ScaleAxis::kPadding - 1) / ScaleAxis::kPadding * ScaleAxis::kPadding;
}

} // namespace

ScaledRows::ScaledRows(const PixelSource &source, const ScaleAxis &across, const ScaleAxis &along, const QRect &rect)
    : m_source(source)
    , m_across(across)
    , m_along(along)
    , m_rect(rect)
    , m_channels(source.channels())
    , m_paddedWidth(padded(rect.width()))
    , m_firstColumn(across.inputBegin(rect.left()))
    , m_alongFirst(along.shrinks() || across.isPlain())
{
    // What pads a row of single values is scaled as well.
    const int width = m_channels == 1 ? m_paddedWidth : rect.width();
    const int last = std::min(rect.left() + width, across.begin() + across.count()) - 1;
    m_columnCount = across.inputEnd(last) - m_firstColumn;
    const int columns = m_channels * padded(m_columnCount);
    const int outputs = m_channels * m_paddedWidth;
    m_kept = Tile(QRect(0, 0, m_alongFirst ? columns : outputs, along.taps()), 1);
    m_lines.assign(std::size_t(along.taps()), kNoLine);
    m_work = Tile(QRect(0, 0, std::max(columns, outputs), 2), 1);
}

void ScaledRows::scaleAcross(const float *columns, float *row) const
{
    const int left = m_rect.left();
    if (m_channels == 4)
        kernels::scalePixels(columns - 4 * qsizetype(m_firstColumn), m_across.first(left), m_across.weights(left),
                             m_across.taps(), row, std::size_t(m_rect.width()));
    else // a whole number of vectors, so that a pixel is computed alike wherever a row begins
        kernels::scaleRow(columns - m_firstColumn, m_across.first(left), m_across.weights(left), m_across.taps(), row,
                          std::size_t(m_paddedWidth));
}

void ScaledRows::fill(int line, float *row)
{
    float *const loaded = m_alongFirst ? row : m_work.row(0, 0);
    m_source.load(line, m_firstColumn, m_columnCount, loaded);
    if (!m_alongFirst)
        scaleAcross(loaded, row);
}

float *ScaledRows::row(int y)
{
    const int taps = m_along.taps();
    const int first = m_along.inputBegin(y);
    std::vector<const float *> lines(static_cast<std::size_t>(taps));
    for (int t = 0; t < taps; ++t) {
        const int line = first + t;
        const int place = ((line % taps) + taps) % taps;
        float *const kept = m_kept.row(0, place);
        if (std::exchange(m_lines[std::size_t(place)], line) != line)
            fill(line, kept);
        lines[std::size_t(t)] = kept;
    }
    const std::size_t outputs = std::size_t(m_channels) * std::size_t(m_rect.width());
    float *const result = m_work.row(0, 1);
    const bool scalesLater = m_alongFirst && !m_across.isPlain();
    float *const mixed = scalesLater ? m_work.row(0, 0) : result;
    const std::size_t count = m_alongFirst ? std::size_t(m_channels) * std::size_t(m_columnCount) : outputs;
    if (m_along.isPlain())
        std::copy_n(lines[0], count, mixed);
    else
        kernels::weighRows(lines.data(), m_along.weights(y), taps, mixed, count);
    if (scalesLater)
        scaleAcross(mixed, result);
    kernels::clampToUnit(result, outputs);
    return result;
}

} // namespace hazelmark
