#include "Geometry.h"

namespace hazelmark::Geometry {

namespace {

/// Rounds to single precision. Not inlined: where a rounded value is widened again, GCC 12 at -O2 and above leaves the
/// rounding out when it vectorises both sides of a size, and a fit would depend on the build.
[[gnu::noinline]] float single(double value)
{
    return static_cast<float>(value);
}

} // namespace

QSizeF getAspectFitModeSizeWithsize(QSizeF size, QSizeF toSize)
{
    QSizeF fitted;
    if (size.width() > size.height()) {
        const auto ratio = single(toSize.width() / size.width());
        fitted = QSizeF(single(size.width() * ratio), single(ratio * size.height()));
    } else {
        const auto ratio = single(toSize.height() / size.height());
        fitted = QSizeF(single(ratio * size.width()), single(size.height() * ratio));
    }
    if (fitted.width() > toSize.width())
        fitted = aspectFitSizeWithMaxSize(fitted, toSize.width());
    if (fitted.height() > toSize.height())
        fitted = aspectFitSizeWithMaxHeight(fitted, toSize.height());
    return fitted;
}

QSizeF aspectFitSizeWithMaxSize(QSizeF size, double scaledWidth)
{
    const auto width = single(size.width());
    const auto ratio = single(scaledWidth / width);
    return {width * ratio, single(ratio * size.height())};
}

QSizeF aspectFitSizeWithMaxHeight(QSizeF size, double scaledHeight)
{
    const auto height = single(size.height());
    const auto ratio = single(scaledHeight / height);
    return {single(ratio * size.width()), height * ratio};
}

QPointF convertedPointToFrameBase(QPointF point, QSizeF contanerSize)
{
    return {point.x() * contanerSize.width(), point.y() * contanerSize.height()};
}

QPointF convertedPointToPercentBase(QPointF point, QSizeF contanerSize)
{
    return {point.x() / contanerSize.width(), point.y() / contanerSize.height()};
}

QRectF convertedRectToFrameBase(const QRectF &rect, QSizeF contanerSize)
{
    return {convertedPointToFrameBase(rect.topLeft(), contanerSize),
            QSizeF(rect.width() * contanerSize.width(), rect.height() * contanerSize.height())};
}

QRectF convertedRectToPercentBase(const QRectF &rect, QSizeF contanerSize)
{
    return {convertedPointToPercentBase(rect.topLeft(), contanerSize),
            QSizeF(rect.width() / contanerSize.width(), rect.height() / contanerSize.height())};
}

} // namespace hazelmark::Geometry
