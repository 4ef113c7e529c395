#pragma once

#include "CellGrid.h"
#include "FilterNode.h"

namespace hazelmark {

/// The unweighted mean of the pixels within a disc around each pixel: the look of an out-of-focus lens.
///
/// A pixel's weight is the part of its square that the disc covers, so fractional radii count. The input is defined
/// everywhere (an edge-clamped picture whose own pixels lie in `inputExtent`). Works on stored values, premultiplied
/// by alpha; where alpha comes out as 0, so do the colours.
///
/// Tiny discs are summed weight by weight, small ones from prefix sums of the pixels. A large one is summed on a
/// grid of cells, in prepare(), and drawn up to pixels tile by tile. docs/performance.md says why, and how exact.
class DiscBlurNode : public FilterNode
{
public:
    /// `radius` in pixels, greater than 0, finite. `inputExtent`: outside it every pixel of the input equals the
    /// nearest one inside.
    DiscBlurNode(FilterNodePtr input, float radius, const QRect &inputExtent);

    QRect inputRegion(std::size_t input, const QRect &region) const override;
    void compute(Tile &result, const TileReader &inputs) const override;
    std::unique_ptr<PreparedState> prepare(const QRegion &needed, const PrepareContext &context) const override;

private:
    struct Prepared;

    QRect m_inputExtent;
    CellGrid m_grid;
};

} // namespace hazelmark
