#include "OpenPhoto.h"

#include "Geometry.h"
#include "PhotoFile.h"
#include "ReadableTypes.h"
#include "Utils.h"

#include <new>

namespace hazelmark {

namespace {

QImage sightOf(const PhotoImagePtr &photo, QSize room, const DisplayColors &colors)
{
    const QSizeF fitted = Geometry::getAspectFitModeSizeWithsize(photo->size(), room);
    const QSize pixels(int(fitted.width()), int(fitted.height()));
    if (pixels.isEmpty())
        return {};
    const QSizeF size = photo->size();
    const PhotoImagePtr scaled = Utils::sharedUtils().scaleImage(photo, pixels);
    photo->setSize(size);
    return scaled ? colors.shown(scaled->bitmap(), scaled->iccProfile()) : QImage();
}

} // namespace

QString OpenPhoto::path() const
{
    return record ? record->filePath() : QString();
}

Outcome<OpenPhoto> PhotoReading::read(const QString &path, const PhotoView &view) const
{
    try {
        const Outcome<PhotoPtr> opened = open(path);
        if (!opened)
            return opened.failure();

        OpenPhoto photo;
        photo.record = std::make_shared<PhotoFile>(*opened);
        const QSizeF size(double(photo.record->width()), double(photo.record->height()));
        const QString extension = photo.record->fileExtension();
        photo.type = ReadableTypes::contains(extension) ? extension : QString::fromLatin1((*opened)->info().format);

        const Outcome<ImageLoader::Loaded> loaded = load(**opened, view.screen);
        if (!loaded)
            return loaded.failure();
        photo.isPartlyDamaged = loaded->isPartlyDamaged;
        photo.isEmbeddedPreview = (*opened)->info().isEmbeddedPreview;
        photo.inputImage = loaded->photo;
        photo.inputImage->bitmap();
        // It measures what the file's picture does, so that it is fitted without the rounding of a reduced size.
        photo.inputImage->setSize(size);
        photo.firstSight = sightOf(photo.inputImage, view.firstSight, view.colors);
        return photo;
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
    }
}

} // namespace hazelmark
