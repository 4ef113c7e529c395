#pragma once

#include "Color.h"
#include "StampPainter.h"

#include <QImage>

#include <vector>

namespace hazelmark {

inline QImage blankBuffer(QSize size)
{
    QImage buffer(size, QImage::Format_RGBA8888_Premultiplied);
    buffer.fill(0);
    return buffer;
}

/// A square tip: premultiplied RGBA in 0..1, 4 values a texel.
struct ReferenceTip
{
    explicit ReferenceTip(const QImage &tip);
    double at(int x, int y, int component) const;

    int side;
    std::vector<double> samples;
};

/// Stamps pixel by pixel in double precision, with one rounding a stamp: what StampPainter must agree with.
void stampReference(QImage &buffer, StampPainter::Mode mode, const Color &color, float pointSize, const QImage &tip,
                    const std::vector<StampCentre> &centres);

/// The largest difference of any component of any pixel.
int largestDifference(const QImage &a, const QImage &b);

} // namespace hazelmark
