#include "ImageLoader.h"

#include "ColorProfile.h"
#include "FlippedImage.h"
#include "Geometry.h"
#include "Log.h"
#include "PathParts.h"
#include "Utils.h"

#include <cstdio>
#include <new>

namespace hazelmark {

namespace {

constexpr int kUpright = 1;

/// Vector pictures of two old kinds, told by their extension exactly as written.
bool isVectorExtension(const QString &extension)
{
    static const QStringList extensions{QStringLiteral("eps"),  QStringLiteral("EPS"), QStringLiteral("pict"),
                                        QStringLiteral("PICT"), QStringLiteral("pct"), QStringLiteral("PCT")};
    return extensions.contains(extension);
}

/// The upright picture at exactly `size` pixels, or in full size where that is empty. Grey stays grey.
Outcome<ImageLoader::Loaded> decodeUpright(Photo &photo, int orientation, QSize size)
{
    Outcome<Picture> picture = photo.decode(photo.isTurnedByAQuarter() ? size.transposed() : size);
    if (!picture)
        return picture.failure();
    const QImage upright = FlippedImage::uprightFromEXIF(picture->pixels, orientation);
    picture->pixels = {};
    PhotoImagePtr image = PhotoImage::fromBitmap(upright, picture->iccProfile);
    if (!size.isEmpty() && image->pixelSize() != size)
        image = Utils::sharedUtils().scaleImage(image, size);
    return ImageLoader::Loaded{image, picture->fileColorModel, picture->convertedToSrgb, picture->isPartlyDamaged};
}

/// What getImageFromFile() hands back, with the reason where there is none.
Outcome<ImageLoader::Loaded> read(Photo &photo, float minWidth)
{
    if (photo.orientation() != kUpright) {
        const QSizeF upright = photo.uprightSize();
        const QSizeF fitted = Geometry::aspectFitSizeWithMaxSize(upright, double(minWidth));
        const bool inFull = fitted.toSize() == upright.toSize();
        if (auto loaded = decodeUpright(photo, photo.orientation(), inFull ? QSize() : fitted.toSize())) {
            loaded->photo->setSize(fitted);
            return loaded;
        }
    }
    return decodeUpright(photo, kUpright, {});
}

Outcome<ImageLoader::Loaded> inRgb(Outcome<ImageLoader::Loaded> loaded)
{
    if (loaded && loaded->colorModel == ColorModel::Gray)
        loaded->photo = ImageLoader::convertGraycolorModelToRgb(loaded->photo);
    return loaded;
}

template <typename Load>
Outcome<ImageLoader::Loaded> withinMemory(const Photo &photo, const Load &load)
{
    try {
        return load();
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, photo.path(), {}};
    }
}

/// Tells of a failure on standard error, without a line end, unless warnings of this module are off.
Outcome<ImageLoader::Loaded> reported(Outcome<ImageLoader::Loaded> loaded)
{
    using Reason = Failure::Reason;
    if (loaded || !lcImageIo().isWarningEnabled())
        return loaded;
    const Reason reason = loaded.failure().reason;
    const bool opened = reason == Reason::Damaged || reason == Reason::Truncated || reason == Reason::TooLarge ||
                        reason == Reason::OutOfMemory || reason == Reason::UnsupportedFormat;
    std::fputs(opened ? "Image not created from image source." : "Image source is NULL.", stderr);
    std::fflush(stderr);
    return loaded;
}

PhotoImagePtr photoOf(const Outcome<ImageLoader::Loaded> &loaded)
{
    return loaded ? loaded->photo : nullptr;
}

} // namespace

Outcome<ImageLoader::Loaded> ImageLoader::load(Photo &photo)
{
    return reported(withinMemory(photo, [&] { return inRgb(read(photo, float(photo.uprightSize().width()))); }));
}

Outcome<ImageLoader::Loaded> ImageLoader::load(const QString &path)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? load(**photo) : reported(photo.failure());
}

Outcome<ImageLoader::Loaded> ImageLoader::loadReduced(Photo &photo, QSize bound)
{
    return withinMemory(photo, [&] {
        const QSize full = photo.uprightSize();
        const QSize fitted = Geometry::getAspectFitModeSizeWithsize(full, bound).toSize().expandedTo({1, 1});
        return inRgb(decodeUpright(photo, photo.orientation(), fitted.width() < full.width() ? fitted : QSize()));
    });
}

PhotoImagePtr ImageLoader::getImageWithFixedOrientionFromUrl(const QString &path)
{
    return photoOf(load(path));
}

QSizeF ImageLoader::getImageOriginalSizeAtFilePathUrl(const QString &path)
{
    if (isVectorExtension(pathExtension(path))) {
        // No interpreter for these here: there is no representation, and the size of the metadata stays.
        qCInfo(lcImageIo).noquote() << QStringLiteral("epsDict = %1").arg(QStringLiteral("(null)"));
    }
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? QSizeF((*photo)->uprightSize()) : QSizeF(0.0, 0.0);
}

PhotoImagePtr ImageLoader::getImageFromFile(const QString &path, float minWidth, float)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    if (!photo)
        return photoOf(reported(photo.failure()));
    return photoOf(reported(withinMemory(**photo, [&] { return read(**photo, minWidth); })));
}

PhotoImagePtr ImageLoader::convertGraycolorModelToRgb(const PhotoImagePtr &photo)
{
    const Utils &utils = Utils::sharedUtils();
    const PhotoImagePtr redrawn = utils.getTransparentImageFromImage(photo, 1.0f);
    if (!redrawn)
        return nullptr;
    // At neutral settings the pass leaves the colours as they are: three equal planes.
    const FilterImage output = utils.getCIImageFromNSImage(redrawn);
    if (output.isEmpty())
        return redrawn;
    const QSizeF size = output.extent().size();
    return utils.getDrawedImage(output.withProfile(rgbProfileForGray(output.iccProfile())), size, QPointF(0, 0),
                                QRectF(QPointF(0, 0), size));
}

} // namespace hazelmark
