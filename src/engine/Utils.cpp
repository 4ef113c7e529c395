#include "Utils.h"

#include <algorithm>
#include <array>
#include <cstring>

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

PhotoImagePtr Utils::addBackgroundToImage(const QImage &canvas, const QColor &Color) const
{
    if (canvas.isNull())
        return nullptr;
    Q_ASSERT(canvas.format() == QImage::Format_RGBA8888_Premultiplied);
    // What a pixel of each coverage lets through, all four channels in one number: no channel of a premultiplied pixel
    // is larger than its coverage, so that adding carries nothing over.
    std::array<quint32, 256> through;
    for (int alpha = 0; alpha < 256; ++alpha) {
        const auto level = [alpha](int background) { return uchar(((255 - alpha) * background + 127) / 255); };
        const uchar bytes[4] = {level(Color.red()), level(Color.green()), level(Color.blue()), level(255)};
        std::memcpy(&through[std::size_t(alpha)], bytes, sizeof bytes);
    }
    QImage opaque(canvas.size(), QImage::Format_RGBX8888);
    for (int y = 0; y < canvas.height(); ++y) {
        const uchar *bytes = canvas.constScanLine(y);
        const auto *from = reinterpret_cast<const quint32 *>(bytes);
        auto *to = reinterpret_cast<quint32 *>(opaque.scanLine(y));
        if (Color == QColor(Qt::black)) { // what masks lie on: several pixels at a time
            std::transform(from, from + canvas.width(), to,
                           [opacity = through[0]](quint32 pixel) { return pixel | opacity; });
            continue;
        }
        for (int x = 0; x < canvas.width(); ++x)
            to[x] = from[x] + through[bytes[4 * x + 3]];
    }
    return PhotoImage::fromBitmap(opaque);
}

float Utils::blurRadius(const CoreFilterObject &settings, double width) const
{
    const float b = settings.blurAmount.value_or(0.0f) / 5.0f;
    return float(width * double(b) / 1000.0);
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
        blur = blur.discBlurred(blurRadius(FilterParameters, size.width()));
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
