#pragma once

#include "FilterNode.h"

#include <QRectF>
#include <QSize>

#include <vector>

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
    /// The weights of one axis: output pixel i is the sum of weights[i * taps + t] x input pixel (first[i] + t).
    struct Axis
    {
        Axis(double sourceStart, double sourceLength, int outputLength, int inputFirst, int inputLast);
        int inputBegin(int output) const { return first[std::size_t(output)]; }
        int inputEnd(int output) const { return first[std::size_t(output)] + taps; }

        int taps;
        std::vector<int> first;
        std::vector<float> weights;
    };

    QRect m_inputExtent;
    QRectF m_source;
    QSize m_size;
    Axis m_across;
    Axis m_along;
};

} // namespace hazelmark
