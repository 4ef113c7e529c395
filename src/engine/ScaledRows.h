#pragma once

#include "PixelSource.h"
#include "Tile.h"
#include "filters/ScaleAxis.h"

#include <QRect>

#include <vector>

namespace hazelmark {

/// A part of a picture at another size, row after row: pixels of floats 0..1. What a pixel gets depends on its place
/// alone. One thread.
class ScaledRows
{
public:
    /// All outlive it. `rect`: of the outputs that the axes tell of; not empty. A source of four values a pixel holds
    /// what these are made of, one of single values what all outputs of the axes are.
    ScaledRows(const PixelSource &source, const ScaleAxis &across, const ScaleAxis &along, const QRect &rect);

    /// The pixels of row y of the rectangle, valid until the next call. They may be changed.
    float *row(int y);

private:
    void fill(int line, float *row);
    void scaleAcross(const float *columns, float *row) const;

    const PixelSource &m_source;
    const ScaleAxis &m_across;
    const ScaleAxis &m_along;
    QRect m_rect;
    int m_channels;
    int m_paddedWidth;
    int m_firstColumn;
    int m_columnCount;
    bool m_alongFirst; ///< lines are mixed before they are scaled
    Tile m_kept;       ///< lines that one row after another needs, as they are mixed
    std::vector<int> m_lines;
    Tile m_work; ///< what is not scaled yet, and the row
};

} // namespace hazelmark
