#pragma once

#include "FilterNode.h"

namespace hazelmark {

/// A picture moved by whole pixels; transparent where it does not reach.
class PlaceNode : public FilterNode
{
public:
    /// `inputExtent`: where the input has pixels. `offset` is added to its coordinates.
    PlaceNode(FilterNodePtr input, const QRect &inputExtent, QPoint offset);

    int channels() const override { return 4; }
    QRect inputRegion(std::size_t input, const QRect &region) const override;
    void compute(Tile &result, const TileReader &inputs) const override;

private:
    QRect m_inputExtent;
    QPoint m_offset;
};

} // namespace hazelmark
