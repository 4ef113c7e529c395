#include "PhotoOpener.h"

#include "Decoder.h"
#include "Geometry.h"
#include "ImageLoader.h"
#include "PhotoFile.h"
#include "ReadableTypes.h"
#include "Utils.h"

#include <new>
#include <optional>

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

/// The whole of what the loader's thread does for one photo. Nothing when nobody waits for it any more.
std::optional<Outcome<OpenedPhoto>> openPhoto(const PhotoOpener::Steps &steps, const PhotoOpener::Knocked &knocked,
                                              const PhotoOpener::Sizes &sizes, const DisplayColors &colors,
                                              const std::function<bool()> &isWanted)
{
    if (!isWanted())
        return std::nullopt;
    const PhotoOpener::Record &record = knocked.record;
    try {
        Outcome<PhotoImagePtr> photo = steps.load(record->filePath(), sizes.screen);
        if (!photo)
            return photo.failure();
        (*photo)->bitmap();
        // From now on it measures what the file's picture does, so that it is fitted without the rounding of a reduced
        // size.
        (*photo)->setSize(QSizeF(double(record->width()), double(record->height())));
        if (!isWanted())
            return std::nullopt;
        return OpenedPhoto{record, knocked.type, *photo, sightOf(*photo, sizes.firstSight, colors)};
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, record->filePath(), {}};
    }
}

} // namespace

PhotoOpener::Steps PhotoOpener::Steps::real()
{
    return {
        [](const QString &path) -> Outcome<QByteArray> {
            const Outcome<PictureInfo> info = readPictureInfo(path);
            if (!info)
                return info.failure();
            return info->format;
        },
        [](const QString &path) { return std::make_shared<PhotoFile>(path); },
        [](const QString &path, QSize bound) -> Outcome<PhotoImagePtr> {
            const Outcome<ImageLoader::Loaded> loaded = ImageLoader::loadReduced(path, bound);
            if (!loaded)
                return loaded.failure();
            return loaded->photo;
        },
    };
}

PhotoOpener::PhotoOpener(Steps steps, QObject *parent)
    : QObject(parent)
    , m_steps(std::move(steps))
{
}

PhotoOpener::PhotoOpener(QObject *parent)
    : PhotoOpener(Steps::real(), parent)
{
}

PhotoOpener::~PhotoOpener()
{
    *m_wanted = 0;
}

void PhotoOpener::knock(const QString &path)
{
    m_door.run(
        [steps = m_steps, path]() -> Outcome<Knocked> {
            const Outcome<QByteArray> format = steps.inspect(path);
            if (!format)
                return format.failure();
            const Record record = steps.readRecord(path);
            const bool named = ReadableTypes::contains(record->fileExtension());
            return Knocked{record, named ? record->fileExtension() : QString::fromLatin1(*format)};
        },
        [this](const Outcome<Knocked> &knocked) {
            if (knocked)
                emit admitted(*knocked);
            else
                emit refused(knocked.failure());
        });
}

void PhotoOpener::load(const Knocked &knocked, const Sizes &sizes, const DisplayColors &colors)
{
    const quint64 request = ++m_requests;
    m_loading = request;
    *m_wanted = request;
    m_loader.run([steps = m_steps, knocked, sizes, colors, wanted = m_wanted,
                  request] { return openPhoto(steps, knocked, sizes, colors, [&] { return *wanted == request; }); },
                 [this, request](const std::optional<Outcome<OpenedPhoto>> &photo) {
                     if (request != m_loading || !photo)
                         return;
                     m_loading = 0;
                     if (*photo)
                         emit opened(**photo);
                     else
                         emit failed(photo->failure());
                 });
}

} // namespace hazelmark
