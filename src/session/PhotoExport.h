#pragma once

#include "ExportWriter.h"
#include "ImageLoader.h"
#include "Outcome.h"
#include "RenderJobs.h"
#include "WorkQueue.h"

#include <QObject>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

namespace hazelmark {

class PhotoFile;

/// Exports of the open photo, one at a time: rendered in full size and written off the main thread. Everything that one
/// needs goes along when it starts. Main thread only.
///
/// When it is destroyed an export that was started is waited for.
class PhotoExport : public QObject
{
    Q_OBJECT

public:
    /// What takes time. Tests put something else in its place.
    struct Work
    {
        std::function<Outcome<ImageLoader::Loaded>(const ExportJob &)> render = [](const ExportJob &job) {
            return job.run();
        };
        std::function<Outcome<Done>(const ExportWriter::Settings &, const QString &path, const PhotoImagePtr &)> write =
            [](const ExportWriter::Settings &settings, const QString &path, const PhotoImagePtr &image) {
                return ExportWriter(settings).save(path, image);
            };
    };

    /// What has become of the file of the open photo.
    enum class Source {
        Unchanged,
        Missing,
        Changed, ///< rewritten or replaced: the strokes were painted on other pixels
        Locked,
        Closed, ///< another photo is open by now
    };

    struct Result
    {
        PhotoImagePtr image; ///< null when the photo could not be loaded
        QString writtenPath; ///< of the file that is there now, whole; empty when none was written
    };
    using Finished = std::function<void(const Result &result)>;

    explicit PhotoExport(Work work, QObject *parent = nullptr);
    ~PhotoExport() override;

    static bool checkForFileAvailabilityAtFilePath(const QString &path);
    /// Whether the file has the immutable flag; then a line in the log says so.
    static bool checkForLockedFile(const QString &path);

    /// Finds out whether the photo is still the one that was opened; strokes belong to the pixels that they were
    /// painted on. Whether it is locked matters to sharing alone.
    void checkSource(const std::shared_ptr<PhotoFile> &photo, bool forSharing, std::function<void(Source)> answer);

    /// An empty `path` writes no file. What fails is in the log, and a result all the same.
    void start(ExportJob job, const ExportWriter::Settings &settings, const QString &path, Finished finished);

signals:
    /// The share of tiles really done, 0 to 1; 0 again at the end.
    void progressChanged(double fraction);

private:
    Work m_work;
    std::shared_ptr<std::atomic<double>> m_progress; ///< written by the render
    QTimer m_progressPoll;
    WorkQueue m_checks{1}; ///< a disk that does not answer holds up no export that runs
    WorkQueue m_queue{1};  ///< last, so that its thread is over before anything else goes
};

} // namespace hazelmark
