#include "ImageLoader.h"

#include "ColorProfile.h"
#include "Decoder.h"
#include "ExifInfo.h"
#include "FlippedImage.h"
#include "Geometry.h"
#include "Log.h"
#include "PathParts.h"
#include "Utils.h"

#include <QRegularExpression>

#include <cstdio>
#include <new>

namespace hazelmark {

namespace {

constexpr int kUpright = 1;

bool turnsByAQuarter(int orientation)
{
    return orientation >= 5 && orientation <= 8;
}

/// Vector pictures of two old kinds, told by their extension exactly as written.
bool isVectorExtension(const QString &extension)
{
    static const QStringList extensions{QStringLiteral("eps"),  QStringLiteral("EPS"), QStringLiteral("pict"),
                                        QStringLiteral("PICT"), QStringLiteral("pct"), QStringLiteral("PCT")};
    return extensions.contains(extension);
}

/// The upright picture at exactly `size` pixels, or in full size where that is empty. Grey stays grey.
Outcome<ImageLoader::Loaded> decodeUpright(const QString &path, int orientation, QSize size)
{
    Outcome<Picture> picture = decodePicture(path, turnsByAQuarter(orientation) ? size.transposed() : size);
    if (!picture)
        return picture.failure();
    const QImage upright = FlippedImage::uprightFromEXIF(picture->pixels, orientation);
    picture->pixels = {};
    PhotoImagePtr photo = PhotoImage::fromBitmap(upright, picture->iccProfile);
    if (!size.isEmpty() && photo->pixelSize() != size)
        photo = Utils::sharedUtils().scaleImage(photo, size);
    return ImageLoader::Loaded{photo, picture->fileColorModel, picture->convertedToSrgb, picture->isPartlyDamaged};
}

/// As it stands, without a line end, unless warnings of this module are off.
void writeToStandardError(const QString &text)
{
    if (!lcImageIo().isWarningEnabled())
        return;
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

void reportNotLoaded(const Failure &failure)
{
    using Reason = Failure::Reason;
    const bool opened = failure.reason == Reason::Damaged || failure.reason == Reason::Truncated ||
                        failure.reason == Reason::TooLarge || failure.reason == Reason::OutOfMemory ||
                        failure.reason == Reason::UnsupportedFormat;
    writeToStandardError(opened ? QStringLiteral("Image not created from image source.")
                                : QStringLiteral("Image source is NULL."));
}

/// What getImageFromFile() hands back, with the reason where there is none.
Outcome<ImageLoader::Loaded> readFile(const QString &path, float minWidth)
{
    const int orientation = ExifInfo(path).orientation();
    if (orientation != kUpright && !path.isEmpty()) {
        const QSizeF upright = ImageLoader::getImageOriginalSizeAtFilePathUrl(path);
        const QSizeF fitted =
            upright.isEmpty() ? upright : Geometry::aspectFitSizeWithMaxSize(upright, double(minWidth));
        const bool inFull = fitted.toSize() == upright.toSize();
        if (auto loaded = decodeUpright(path, orientation, inFull ? QSize() : fitted.toSize())) {
            loaded->photo->setSize(upright.isEmpty() ? QSizeF(loaded->photo->pixelSize()) : fitted);
            return loaded;
        }
    }
    return decodeUpright(path, kUpright, {});
}

Outcome<ImageLoader::Loaded> inRgb(Outcome<ImageLoader::Loaded> loaded)
{
    if (loaded && loaded->colorModel == ColorModel::Gray)
        loaded->photo = ImageLoader::convertGraycolorModelToRgb(loaded->photo);
    return loaded;
}

template <typename Load>
Outcome<ImageLoader::Loaded> withinMemory(const QString &path, const Load &load)
{
    try {
        return load();
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
    }
}

Outcome<ImageLoader::Loaded> reported(Outcome<ImageLoader::Loaded> loaded)
{
    if (!loaded)
        reportNotLoaded(loaded.failure());
    return loaded;
}

PhotoImagePtr photoOf(const Outcome<ImageLoader::Loaded> &loaded)
{
    return loaded ? loaded->photo : nullptr;
}

} // namespace

Outcome<ImageLoader::Loaded> ImageLoader::load(const QString &path)
{
    return reported(withinMemory(path, [&] {
        const QSizeF size = getImageOriginalSizeAtFilePathUrl(path);
        return inRgb(readFile(path, float(size.width())));
    }));
}

Outcome<ImageLoader::Loaded> ImageLoader::loadReduced(const QString &path, QSize bound)
{
    return withinMemory(path, [&] {
        const QSizeF full = getImageOriginalSizeAtFilePathUrl(path);
        const QSize fitted = Geometry::getAspectFitModeSizeWithsize(full, bound).toSize().expandedTo({1, 1});
        const bool reduce = fitted.width() < full.width();
        return inRgb(decodeUpright(path, ExifInfo(path).orientation(), reduce ? fitted : QSize()));
    });
}

PhotoImagePtr ImageLoader::getImageWithFixedOrientionFromUrl(const QString &path)
{
    return photoOf(load(path));
}

QSizeF ImageLoader::getImageOriginalSizeAtFilePathUrl(const QString &path)
{
    const ExifInfo metadata(path);
    QSizeF size = sizeFromText(metadata.imageSize());
    if (isVectorExtension(pathExtension(path))) {
        // No interpreter for these here: there is no representation, and the size of the metadata stays.
        qCInfo(lcImageIo).noquote() << QStringLiteral("epsDict = %1").arg(QStringLiteral("(null)"));
    }
    return turnsByAQuarter(metadata.orientation()) ? size.transposed() : size;
}

PhotoImagePtr ImageLoader::getImageFromFile(const QString &path, float minWidth, float)
{
    return photoOf(reported(withinMemory(path, [&] { return readFile(path, minWidth); })));
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

QSizeF ImageLoader::sizeFromText(const QString &text)
{
    static const QRegularExpression number(QStringLiteral(R"([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)"));
    QRegularExpressionMatchIterator found = number.globalMatch(text);
    double values[2];
    for (double &value : values) {
        if (!found.hasNext())
            return {0.0, 0.0};
        value = found.next().captured().toDouble();
    }
    return {values[0], values[1]};
}

} // namespace hazelmark
