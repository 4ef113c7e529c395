#pragma once

#include "Painting.h"
#include "PaintingStore.h"
#include "WorkQueue.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace hazelmark {

class PhotoFile;

/// Keeps what is painted, so that nothing is lost by closing, by a second photo or by a crash: a second after a step
/// the painting is on its way to the disk. Each painting of a photo that begins from nothing, or from another one, is
/// kept in a file of its own. Files are read and written off the main thread.
///
/// When it is destroyed, what is pending is written first. Main thread only.
class PaintingKeeper : public QObject
{
    Q_OBJECT

public:
    /// What stands beside the strokes.
    struct Values
    {
        std::optional<float> blur;
        std::optional<float> vignette;
        bool operator==(const Values &) const = default;
    };

    /// `painting` outlives the keeper. `folder`: of the store.
    PaintingKeeper(Painting &painting, const QString &folder, QObject *parent = nullptr);
    ~PaintingKeeper() override;

    /// From now on this photo is painted on. To be called while the painting of the one before is still there.
    void startPhoto(const std::shared_ptr<PhotoFile> &photo);
    void setValues(const Values &values);
    const Values &values() const { return m_values; }

    /// Something was painted: it is kept within a second.
    void touch();
    /// Keeps what is painted now, without waiting for the disk.
    void keep();
    /// What is painted from now on goes into a file of its own. To be called before the painting is replaced.
    void startFile();
    /// What is painted now is in a file already.
    void setKept() { m_kept = state(); }

    /// Those of the open photo that were kept before, the newest first.
    const std::vector<StoredPainting> &stored() const { return m_stored; }
    void forget();

    using Answer = std::function<void(const Outcome<StrokesFile> &)>;
    /// A file that cannot be used is set aside when `isStored`.
    void read(const QString &path, bool isStored, Answer answer);
    /// Writes what is painted now into the file of a person's choice.
    void writeTo(const QString &path, const Values &values, std::function<void(const Outcome<Done> &)> answer);

signals:
    void storedChanged();
    /// Once.
    void failed(const Failure &failure);

private:
    struct State
    {
        Painting::Version painting;
        Values values;
        bool operator==(const State &) const = default;
    };
    /// Of one photo; the workers' own.
    struct Place
    {
        PaintingStore::Key photo;
        QString path; ///< of the file; empty as long as there is none
        std::atomic<bool> cancelled = false;
    };
    struct Found
    {
        Outcome<Done> written = Done();
        std::optional<std::vector<StoredPainting>> stored; ///< nothing when they are what they were
    };

    State state() const { return {m_painting.version(), m_values}; }
    void take(const Found &found, const std::shared_ptr<Place> &place);
    void look();

    Painting &m_painting;
    PaintingStore m_store;
    std::shared_ptr<PhotoFile> m_photo;
    std::shared_ptr<Place> m_place = std::make_shared<Place>();
    Values m_values;
    State m_kept;
    std::vector<StoredPainting> m_stored;
    bool m_hasFailed = false;
    QTimer m_soon;
    WorkQueue m_queue{1}; ///< last, so that its thread is over before anything else goes
};

} // namespace hazelmark
