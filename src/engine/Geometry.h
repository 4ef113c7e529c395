#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

/// Sizes that fit into others, and points and rectangles as fractions of a container. Stateless; any thread.
///
/// No conversion flips the y axis: a point keeps the orientation of the space that it comes from.
namespace hazelmark::Geometry {

/// The size of `size`'s proportions that fills the box `toSize` along one side and is nowhere larger than it. Small
/// sizes are enlarged as readily as large ones are shrunk.
///
/// Every quotient and product is rounded to single precision as it is formed, so the result may miss the box's side
/// by one unit in the last place of a float; whoever compares layouts must compute with this function.
QSizeF getAspectFitModeSizeWithsize(QSizeF size, QSizeF toSize);

/// `size` scaled to the width `scaledWidth`, in single precision.
QSizeF aspectFitSizeWithMaxSize(QSizeF size, double scaledWidth);

/// `size` scaled to the height `scaledHeight`, in single precision.
QSizeF aspectFitSizeWithMaxHeight(QSizeF size, double scaledHeight);

/// A fraction of the container to a point in it: (x * width, y * height).
QPointF convertedPointToFrameBase(QPointF point, QSizeF contanerSize);

/// A point in the container to a fraction of it: (x / width, y / height). 0..1 inside the container, whatever the
/// name says; unclamped outside. An empty container gives infinities or not-a-numbers.
QPointF convertedPointToPercentBase(QPointF point, QSizeF contanerSize);

QRectF convertedRectToFrameBase(const QRectF &rect, QSizeF contanerSize);
QRectF convertedRectToPercentBase(const QRectF &rect, QSizeF contanerSize);

} // namespace hazelmark::Geometry
