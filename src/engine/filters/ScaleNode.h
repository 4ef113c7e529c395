#pragma once

#include "FilterNode.h"
#include "ScaleAxis.h"

#include <QRectF>
#include <QSize>

namespace hazelmark {

/// A part of a picture at another size: cubic convolution (Keys, a = -0.5), stretched over the source pixels when the
/// picture shrinks, so that every source pixel counts. Interpolates: flat areas keep their value, and what overshoots
/// 0..1 beside hard edges is cut off. Works premultiplied. Outside `inputExtent` edge pixels are repeated.
class ScaleNode : public FilterNode
{
public:
    /// `source`: the part of the input, in its pixels, that becomes the rectangle (0, 0) .. `size`.
    ScaleNode(FilterNodePtr input, const QRect &inputExtent, const QRectF &source, QSize size);

    QRect inputRegion(std::size_t input, const QRect &region) const override;
    void compute(Tile &result, const TileReader &inputs) const override;
    bool isZero(int channel, const QRect &region) const override;
    FilterNodePtr singlePlane(int channel) const override;

private:
    QRect m_inputExtent;
    QRectF m_source;
    QSize m_size;
    ScaleAxis m_across;
    ScaleAxis m_along;
};

} // namespace hazelmark
