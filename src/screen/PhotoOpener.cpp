#include "PhotoOpener.h"

#include "Decoder.h"
#include "Geometry.h"
#include "PhotoFile.h"
#include "ReadableTypes.h"
#include "Utils.h"

#include <limits>
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

/// A photo from its file to what is shown of it.
Outcome<OpenedPhoto> readPhoto(const PhotoOpener::Steps &steps, const QString &path, const PhotoOpener::Sizes &sizes,
                               const DisplayColors &colors)
{
    try {
        const Outcome<QByteArray> format = steps.inspect(path);
        if (!format)
            return format.failure();

        OpenedPhoto photo;
        photo.record = steps.readRecord(path);
        const QSizeF size(double(photo.record->width()), double(photo.record->height()));
        if (size.isEmpty())
            return Failure{Failure::Reason::Damaged, path, {}};
        const QString extension = photo.record->fileExtension();
        photo.type = ReadableTypes::contains(extension) ? extension : QString::fromLatin1(*format);

        const Outcome<ImageLoader::Loaded> loaded = steps.load(path, sizes.screen);
        if (!loaded)
            return loaded.failure();
        photo.isPartlyDamaged = loaded->isPartlyDamaged;
        photo.inputImage = loaded->photo;
        photo.inputImage->bitmap();
        // It measures what the file's picture does, so that it is fitted without the rounding of a reduced size.
        photo.inputImage->setSize(size);
        photo.firstSight = sightOf(photo.inputImage, sizes.firstSight, colors);
        return photo;
    } catch (const std::bad_alloc &) {
        return Failure{Failure::Reason::OutOfMemory, path, {}};
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
        [](const QString &path, QSize bound) { return ImageLoader::loadReduced(path, bound); },
    };
}

PhotoOpener::PhotoOpener(Steps steps, QObject *parent)
    : QObject(parent)
    , m_steps(std::move(steps))
{
}

PhotoOpener::~PhotoOpener()
{
    *m_oldestWanted = std::numeric_limits<Request>::max();
}

Outcome<OpenedPhoto> PhotoOpener::read(const QString &path, const Sizes &sizes, const DisplayColors &colors) const
{
    return readPhoto(m_steps, path, sizes, colors);
}

void PhotoOpener::open(const QString &path, const Sizes &sizes, const DisplayColors &colors)
{
    const Request request = ++m_lastRequest;
    m_requests[request];
    m_queue.run(
        [steps = m_steps, path, sizes, colors, oldestWanted = m_oldestWanted,
         request]() -> std::optional<Outcome<OpenedPhoto>> {
            if (request < *oldestWanted)
                return std::nullopt;
            return readPhoto(steps, path, sizes, colors);
        },
        [this, request](const std::optional<Outcome<OpenedPhoto>> &photo) {
            if (photo)
                settle(request, *photo);
        },
        int(request)); // the latest first: once it is whole, those before it need not be read
}

void PhotoOpener::settle(Request request, const Outcome<OpenedPhoto> &photo)
{
    const auto place = m_requests.find(request);
    if (!photo) {
        if (place != m_requests.end())
            m_requests.erase(place);
    } else if (place != m_requests.end()) {
        place->second = *photo;
        m_requests.erase(m_requests.begin(), place);
        *m_oldestWanted = request;
    }
    const bool nothingLater = !m_requests.empty() && m_requests.rbegin()->second;
    if (nothingLater) {
        const OpenedPhoto whole = *m_requests.rbegin()->second;
        m_requests.clear();
        emit opened(whole);
    }
    if (!photo)
        emit refused(photo.failure());
}

} // namespace hazelmark
