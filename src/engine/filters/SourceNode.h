#pragma once

#include "FilterNode.h"

#include <QImage>

namespace hazelmark {

/// A bitmap at the start of a graph. The only node that knows that bitmap rows count from the top.
class SourceNode : public FilterNode
{
public:
    /// `bitmap`: RGBX8888, RGBA8888, RGBX64, RGBA64, Grayscale8 or Grayscale16 (grey yields three equal planes).
    explicit SourceNode(QImage bitmap);

    const QImage &bitmap() const { return m_bitmap; }

    int channels() const override;
    /// `result` must lie inside the bitmap.
    void compute(Tile &result, const TileReader &inputs) const override;
    bool isZero(int channel, const QRect &region) const override;
    FilterNodePtr singlePlane(int channel) const override;

    /// The bitmap's row at height y.
    const uchar *rowAt(int y) const { return m_bitmap.constScanLine(m_bitmap.height() - 1 - y); }

private:
    SourceNode(QImage bitmap, int onlyPlane);

    QImage m_bitmap;
    int m_onlyPlane = -1; ///< the one plane that is yielded, or -1 for all
};

} // namespace hazelmark
