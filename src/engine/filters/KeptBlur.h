#pragma once

#include "CellGrid.h"
#include "CellPlanes.h"
#include "DiscSummer.h"

#include <QImage>
#include <QRegion>

#include <memory>

namespace hazelmark {

/// A bitmap blurred by a large disc, kept as cells of a grid: what is asked for once need not be blurred again,
/// wherever and at whatever size it is drawn. A cell gets the same value whenever it is computed, and the one that
/// DiscBlurNode draws from.
///
/// Keeps what was asked for last and what lay in the same rectangle before. One thread at a time.
class KeptBlur
{
public:
    /// Whether a disc of this radius, in pixels, is summed over cells that serve here.
    static bool canKeep(QSize size, double radius);

    /// canKeep() holds.
    KeptBlur(QSize size, double radius);

    /// Of the bitmap.
    QSize size() const { return m_size; }
    double radius() const { return m_radius; }
    const CellGrid &grid() const { return m_grid; }

    /// Sees to it that these cells are there. `source`: the bitmap, the same each time. Throws std::bad_alloc.
    void provide(const QRegion &cells, const QImage &source, int threads);
    const CellPlanes &cells() const { return m_blurred; }

private:
    class Pixels;
    void makeRoom(const QRect &cells, int channels);

    QSize m_size;
    double m_radius;
    CellGrid m_grid;
    DiscSummer m_disc;
    CellPlanes m_means;
    QRegion m_meansThere;
    CellPlanes m_blurred;
    QRegion m_blurredThere;
};

} // namespace hazelmark
