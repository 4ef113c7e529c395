#include "PaintingKeeper.h"

#include "Log.h"
#include "PhotoFile.h"
#include "SafeFile.h"

#include <chrono>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kKeepDelay{1000};

} // namespace

PaintingKeeper::PaintingKeeper(Painting &painting, const QString &folder, QObject *parent)
    : QObject(parent)
    , m_painting(painting)
    , m_store(folder)
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kKeepDelay);
    connect(&m_soon, &QTimer::timeout, this, &PaintingKeeper::keep);
}

PaintingKeeper::~PaintingKeeper()
{
    m_place->cancelled = true;
    keep();
    m_queue.finish();
}

void PaintingKeeper::startPhoto(const std::shared_ptr<PhotoFile> &photo)
{
    m_place->cancelled = true;
    keep();
    m_photo = photo;
    m_place = std::make_shared<Place>();
    m_stored.clear();
    emit storedChanged();
    if (!photo)
        return;
    m_queue.run(
        [place = m_place, photo] {
            place->photo.path = PaintingStore::digestOfPath(photo->filePath());
            if (photo->identity())
                place->photo.content =
                    PaintingStore::digestOfContent(photo->filePath(), *photo->identity(), place->cancelled);
        },
        [] {});
    look();
}

void PaintingKeeper::setValues(const Values &values)
{
    if (std::exchange(m_values, values) != values && !m_painting.isEmpty())
        touch();
}

void PaintingKeeper::touch()
{
    if (!m_soon.isActive())
        m_soon.start();
}

void PaintingKeeper::keep()
{
    m_soon.stop();
    const State now = state();
    if (!m_photo || m_painting.isEmpty() || now == m_kept)
        return;
    m_kept = now;
    m_queue.run(
        [store = m_store, place = m_place, painting = m_painting.file(), values = m_values]() mutable -> Found {
            painting.blur = values.blur;
            painting.vignette = values.vignette;
            const bool isNew = place->path.isEmpty();
            if (isNew)
                place->path = store.newPath(place->photo);
            Outcome<Done> written = store.write(place->path, painting);
            if (!written) {
                qCWarning(lcSession).noquote() << "a painting is not kept:" << written.failure().sentence();
                return {written, std::nullopt};
            }
            if (!isNew)
                return {};
            store.prune();
            return {Done(), store.find(place->photo, place->path)};
        },
        [this, place = m_place](const Found &found) { take(found, place); });
}

void PaintingKeeper::take(const Found &found, const std::shared_ptr<Place> &place)
{
    if (!found.written && !std::exchange(m_hasFailed, true))
        emit failed(found.written.failure());
    if (place != m_place || !found.stored || *found.stored == m_stored)
        return;
    m_stored = *found.stored;
    emit storedChanged();
}

/// What is there of the photo besides the file that is written to.
void PaintingKeeper::look()
{
    m_queue.run(
        [store = m_store, place = m_place]() -> Found {
            return {Done(), store.find(place->photo, place->path)};
        },
        [this, place = m_place](const Found &found) { take(found, place); });
}

void PaintingKeeper::startFile()
{
    keep();
    m_queue.run([place = m_place] { place->path.clear(); }, [] {});
    look();
}

void PaintingKeeper::forget()
{
    m_soon.stop();
    setKept(); // what is painted now comes back with what is painted next
    m_queue.run(
        [store = m_store, place = m_place]() -> Found {
            store.forget();
            place->path.clear();
            return {Done(), std::vector<StoredPainting>()};
        },
        [this, place = m_place](const Found &found) { take(found, place); });
}

void PaintingKeeper::read(const QString &path, bool isStored, Answer answer)
{
    m_queue.run(
        [store = m_store, path, isStored]() -> Outcome<StrokesFile> {
            QString fault;
            const std::optional<StrokesFile> painting = isStored ? store.read(path) : StrokesFile::read(path, fault);
            if (painting)
                return *painting;
            if (!isStored)
                qCWarning(lcSession).noquote() << fault;
            return Failure{Failure::Reason::NotAPainting, path, fault};
        },
        std::move(answer));
    if (isStored)
        look();
}

void PaintingKeeper::writeTo(const QString &path, const Values &values,
                             std::function<void(const Outcome<Done> &)> answer)
{
    m_queue.run(
        [path, values, painting = m_painting.file(), photo = m_photo]() mutable -> Outcome<Done> {
            painting.blur = values.blur;
            painting.vignette = values.vignette;
            Outcome<SafeFile> file = SafeFile::create(path, {{photo->filePath()}});
            if (!file)
                return file.failure();
            const Outcome<Done> written = file->write(painting.toJson());
            return written ? file->commit() : written;
        },
        std::move(answer));
}

} // namespace hazelmark
