#include "FlippedImage.h"

#include "ParallelFor.h"
#include "Utils.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace hazelmark {

namespace {

/// Of any size: the blend fits it to its receiver in one step. By way of the logical size, which another render may
/// have set to anything, it would be scaled twice and lose by it.
FilterImage pixelsOf(const PhotoImagePtr &photo)
{
    return photo ? photo->pixels() : FilterImage();
}

} // namespace

PhotoImagePtr FlippedImage::imageFromContext(const PhotoImagePtr &receiver, const ImageFilter &withFilter)
{
    return PhotoImage::drawing(withFilter.outputImage(), receiver->size());
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
    BlendWithMaskFilter blend;
    blend.setImage(ImageFilter::kInputImage, Utils::sharedUtils().getCIImageFromNSImage(receiver));
    blend.setImage(ImageFilter::kInputBackgroundImage, pixelsOf(background));
    blend.setImage(ImageFilter::kInputMaskImage, pixelsOf(overlapImage));
    return imageFromContext(receiver, blend);
}

PhotoImagePtr FlippedImage::vignetteWithRadius(const PhotoImagePtr &receiver, float, float andIntensity, const QColor &)
{
    if (!receiver || !(andIntensity > 0.0f))
        return receiver;
    ExposureAdjustFilter exposure;
    exposure.setImage(ImageFilter::kInputImage, receiver->pixels());
    exposure.inputEV = andIntensity * -10.0f;
    return imageFromContext(receiver, exposure);
}

namespace {

// Rows of one block are written while its columns are read; both stay in the first-level cache.
constexpr int kBlock = 32;

/// result(x, y) = image at (x, y) exchanged, then mirrored on the flagged axes of the image.
template <typename Pixel>
QImage transposed(const QImage &image, bool mirrorAcross, bool mirrorAlong)
{
    QImage result(image.height(), image.width(), image.format());
    if (result.isNull())
        throw std::bad_alloc();
    uchar *const bits = result.bits();
    const qsizetype line = result.bytesPerLine();
    const int width = image.width();
    const int height = image.height();
    parallelFor((width + kBlock - 1) / kBlock, defaultThreadCount(), [&](int strip) {
        const int last = std::min(width, (strip + 1) * kBlock);
        for (int top = 0; top < height; top += kBlock) {
            for (int x = strip * kBlock; x < last; ++x) {
                auto *out = reinterpret_cast<Pixel *>(bits + x * line);
                const int fromX = mirrorAcross ? width - 1 - x : x;
                for (int y = top; y < std::min(height, top + kBlock); ++y) {
                    const int fromY = mirrorAlong ? height - 1 - y : y;
                    out[y] = reinterpret_cast<const Pixel *>(image.constScanLine(fromY))[fromX];
                }
            }
        }
    });
    return result;
}

QImage transposed(const QImage &image, bool mirrorAcross, bool mirrorAlong)
{
    switch (image.depth()) {
    case 8:
        return transposed<std::uint8_t>(image, mirrorAcross, mirrorAlong);
    case 16:
        return transposed<std::uint16_t>(image, mirrorAcross, mirrorAlong);
    case 32:
        return transposed<std::uint32_t>(image, mirrorAcross, mirrorAlong);
    default:
        return transposed<std::uint64_t>(image, mirrorAcross, mirrorAlong);
    }
}

} // namespace

QImage FlippedImage::RotateWithEXIF(const QImage &image, int orientation)
{
    switch (orientation) {
    case 2:
        return image.mirrored(true, false);
    case 3:
        return image.mirrored(true, true);
    case 4:
        return image.mirrored(false, true);
    case 5:
        return transposed(image, false, false);
    case 6:
        return transposed(image, true, false);
    case 7:
        return transposed(image, true, true);
    case 8:
        return transposed(image, false, true);
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
