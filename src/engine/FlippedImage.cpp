#include "FlippedImage.h"

#include "Utils.h"

#include <QTransform>

namespace hazelmark {

namespace {

/// Of any size: the blend fits it to its receiver in one step. By way of the logical size, which another render may
/// have set to anything, it would be scaled twice and lose by it.
FilterImage pixelsOf(const PhotoImagePtr &photo)
{
    return photo ? photo->pixels() : FilterImage();
}

} // namespace

PhotoImagePtr FlippedImage::imageFromContext(const PhotoImagePtr &receiver, const FilterImage &withFilter)
{
    return PhotoImage::drawing(withFilter, receiver->size());
}

PhotoImagePtr FlippedImage::scaleImage(const PhotoImagePtr &photo, QSizeF newSize)
{
    return Utils::sharedUtils().scaleImage(photo, newSize);
}

PhotoImagePtr FlippedImage::blendWithAlphaMask(const PhotoImagePtr &receiver, const PhotoImagePtr &background,
                                               const PhotoImagePtr &overlapImage, float)
{
    if (!receiver)
        return nullptr;
    const FilterImage foreground = Utils::sharedUtils().getCIImageFromNSImage(receiver);
    return imageFromContext(receiver,
                            FilterImage::blendWithMask(foreground, pixelsOf(background), pixelsOf(overlapImage)));
}

PhotoImagePtr FlippedImage::vignetteWithRadius(const PhotoImagePtr &receiver, float, float andIntensity, const QColor &)
{
    if (!receiver || !(andIntensity > 0.0f))
        return receiver;
    return imageFromContext(receiver, receiver->pixels().exposureAdjusted(andIntensity * -10.0f));
}

QImage FlippedImage::RotateWithEXIF(const QImage &image, int orientation)
{
    const auto turned = [&image](int degrees) { return image.transformed(QTransform().rotate(degrees)); };
    switch (orientation) {
    case 2:
        return image.mirrored(true, false);
    case 3:
        return image.mirrored(true, true);
    case 4:
        return image.mirrored(false, true);
    case 5:
        return turned(90).mirrored(true, false);
    case 6:
        return turned(-90);
    case 7:
        return turned(-90).mirrored(true, false);
    case 8:
        return turned(90);
    default:
        return image;
    }
}

QImage FlippedImage::uprightFromEXIF(const QImage &image, int orientation)
{
    // Every turn is its own opposite but for the two quarter turns, which are each other's.
    const int opposite = orientation == 6 ? 8 : orientation == 8 ? 6 : orientation;
    return RotateWithEXIF(image, opposite);
}

} // namespace hazelmark
