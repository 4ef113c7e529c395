#include "Geometry.h"

namespace hazelmark::Geometry {

QSizeF getAspectFitModeSizeWithsize(QSizeF size, QSizeF toSize)
{
    QSizeF fitted;
    if (size.width() > size.height()) {
        const auto ratio = float(toSize.width() / size.width());
        fitted = QSizeF(float(size.width() * ratio), float(ratio * size.height()));
    } else {
        const auto ratio = float(toSize.height() / size.height());
        fitted = QSizeF(float(ratio * size.width()), float(size.height() * ratio));
    }
    if (fitted.width() > toSize.width())
        fitted = aspectFitSizeWithMaxSize(fitted, toSize.width());
    if (fitted.height() > toSize.height())
        fitted = aspectFitSizeWithMaxHeight(fitted, toSize.height());
    return fitted;
}

QSizeF aspectFitSizeWithMaxSize(QSizeF size, double scaledWidth)
{
    const auto width = float(size.width());
    const auto ratio = float(scaledWidth / width);
    return {width * ratio, float(ratio * size.height())};
}

QSizeF aspectFitSizeWithMaxHeight(QSizeF size, double scaledHeight)
{
    const auto height = float(size.height());
    const auto ratio = float(scaledHeight / height);
    return {float(ratio * size.width()), height * ratio};
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
