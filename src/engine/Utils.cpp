#include "Utils.h"

namespace hazelmark {

const Utils &Utils::sharedUtils()
{
    static const Utils utils;
    return utils;
}

FilterImage Utils::getCIImageFromNSImage(const PhotoImagePtr &photo) const
{
    if (!photo)
        return {};
    const FilterImage pixels = photo->pixels();
    if (pixels.isEmpty())
        return {};
    const QSizeF size = photo->size();
    const float sx = float(size.width() / pixels.extent().width());
    const float sy = float(size.height() / pixels.extent().height());
    // The factors only say whether to scale: what is scaled by a rounded one measures a little more or less.
    return sx != 1.0f || sy != 1.0f ? pixels.scaledTo(size) : pixels;
}

PhotoImagePtr Utils::getDrawedImage(const FilterImage &image, QSizeF size, QPointF AtPoint,
                                    const QRectF &FromRect) const
{
    if (image.isEmpty())
        return nullptr;
    return PhotoImage::drawing(image.drawnInto(size.toSize(), QRectF(AtPoint, size), FromRect), size);
}

PhotoImagePtr Utils::scaleImage(const PhotoImagePtr &photo, QSizeF newSize) const
{
    if (!photo || !photo->isValid() || newSize.isEmpty())
        return nullptr;
    photo->setSize(newSize);
    return PhotoImage::drawing(getCIImageFromNSImage(photo), newSize);
}

PixelImage Utils::getCgiImageRef(const PhotoImagePtr &photo) const
{
    return photo ? PixelImage{photo->bitmap(), photo->iccProfile()} : PixelImage{};
}

PhotoImagePtr Utils::getTransparentImageFromImage(const PhotoImagePtr &photo, float factor) const
{
    if (!photo || photo->size().isEmpty())
        return photo;
    return PhotoImage::drawing(getCIImageFromNSImage(photo).withOpacity(factor), photo->size());
}

PhotoImagePtr Utils::addBackgroundToImage(const PhotoImagePtr &photo, const QColor &Color) const
{
    return photo ? PhotoImage::drawing(getCIImageFromNSImage(photo).overColor(Color), photo->size()) : nullptr;
}

PhotoImagePtr Utils::applyfilterOnBlurImage(const PhotoImagePtr &photo, const QString &,
                                            const CoreFilterObject &FilterParameters) const
{
    const float b = FilterParameters.blurAmount.value_or(0.0f) / 5.0f;
    const float m = FilterParameters.motionBlurAmount.value_or(0.0f) / 5.0f;
    FilterImage blur = getCIImageFromNSImage(photo);
    const QSizeF size = blur.extent().size();
    if (b > 0.0f || m > 0.0f)
        blur = blur.clamped();
    if (b > 0.0f)
        blur = blur.discBlurred(float(size.width() * double(b) / 1000.0));
    const PhotoImagePtr drawn = getDrawedImage(blur, size, QPointF(0, 0), QRectF(QPointF(0, 0), size));
    clearAllInPutParametersFromcurrentFilter(blur);
    return drawn;
}

PhotoImagePtr Utils::applyfilterOnInFocusImage(const PhotoImagePtr &photo, const QString &,
                                               const CoreFilterObject &) const
{
    return photo;
}

} // namespace hazelmark
