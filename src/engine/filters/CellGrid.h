#pragma once

#include "kernels/CoarseRows.h"

#include <QRect>

#include <vector>

namespace hazelmark {

/// Rounded down, also below 0.
inline int floorDivided(int value, int divisor)
{
    return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

/// A grid of square cells over a picture, for a disc that is large enough to be summed over cells instead of pixels.
/// Cell (0, 0) starts at the picture's lower left pixel; cells outside the picture have the colours of its edge.
class CellGrid
{
public:
    /// Above this many times the picture's longer side a larger disc gives the same means to within a tenth of an
    /// 8-bit step: nearly all of it is edge colour.
    static constexpr double kLargestRadius = 4096.0;

    /// Larger cells are averaged from cells of this size.
    static constexpr int kLargestDirectScale = 16;

    /// `extent`: the pixels of the picture. `radius` in pixels, greater than 0.
    CellGrid(const QRect &extent, double radius);

    /// Pixels along a cell's side, a power of two. 1: the disc is too small for cells.
    int scale() const { return m_scale; }
    /// In cells: of the disc whose sum over cells, drawn up to pixels with tapsAt(), comes nearest the sum over
    /// pixels. The radius asked for, with scale 1.
    double discRadius() const { return m_discRadius; }

    /// The cells that touch the picture and one more on every side: beyond, all equal the nearest of these.
    QRect cells() const;
    /// The cells that the pixels of `region` are drawn from.
    QRect cellsFor(const QRect &region) const;
    /// The pixels of a rectangle of cells.
    QRect pixelsOf(const QRect &cells) const;

    /// A pixel's place along one axis: the first of kTaps cells and the weight of each.
    struct Place
    {
        int cell;
        kernels::Taps taps;
    };
    Place placeOfColumn(int x) const { return place(x - m_extent.left()); }
    Place placeOfRow(int y) const { return place(y - m_extent.top()); }
    /// The same of any place along an axis, in pixels from the picture's corner; the middle of the first lies at 0.5.
    Place placeAt(double position) const;

    /// The grid of the same picture with cells of another size.
    CellGrid withScale(int scale) const;

private:
    Place place(int pixel) const;

    QRect m_extent;
    int m_scale;
    double m_discRadius;
    std::vector<kernels::Taps> m_phases; ///< of the pixels of a cell, unless there are very many
};

} // namespace hazelmark
