#pragma once

#include "FilterNode.h"

namespace hazelmark {

/// A picture without end: outside `extent` every point has the colour of the nearest edge pixel.
class AffineClampNode : public FilterNode
{
public:
    /// `extent`: where the input has pixels; not empty.
    AffineClampNode(FilterNodePtr input, const QRect &extent);

    QRect inputRegion(std::size_t input, const QRect &region) const override;
    void compute(Tile &result, const TileReader &inputs) const override;
    std::optional<std::size_t> passesThrough(const QRect &region) const override;

private:
    QRect m_extent;
};

} // namespace hazelmark
