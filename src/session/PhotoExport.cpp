#include "PhotoExport.h"

#include "FileAttributes.h"
#include "FileIdentity.h"
#include "Log.h"
#include "PhotoFile.h"

#include <QFileInfo>

#include <chrono>

namespace hazelmark {

namespace {

constexpr std::chrono::milliseconds kProgressInterval{33};

PhotoExport::Source stateOf(const PhotoFile &photo, bool forSharing)
{
    using Source = PhotoExport::Source;
    const QString &path = photo.filePath();
    if (!PhotoExport::checkForFileAvailabilityAtFilePath(path))
        return Source::Missing;
    if (FileIdentity::ofPath(path) != photo.identity())
        return Source::Changed;
    return forSharing && PhotoExport::checkForLockedFile(path) ? Source::Locked : Source::Unchanged;
}

PhotoExport::Result run(const PhotoExport::Work &work, const ExportJob &job, const ExportWriter::Settings &settings,
                        const QString &path)
{
    PhotoExport::Result result;
    const Outcome<ImageLoader::Loaded> rendered = work.render(job);
    if (rendered)
        result.image = rendered->photo;
    else
        qCWarning(lcSession).noquote() << rendered.failure().sentence();
    if (path.isEmpty())
        return result;
    // Without a picture too: the writer says what becomes of that.
    const Outcome<Done> written = work.write(settings, path, result.image);
    if (written)
        result.writtenPath = path;
    else
        qCWarning(lcSession).noquote() << written.failure().sentence();
    return result;
}

} // namespace

PhotoExport::PhotoExport(Work work, QObject *parent)
    : QObject(parent)
    , m_work(std::move(work))
{
    m_progressPoll.setInterval(kProgressInterval);
    connect(&m_progressPoll, &QTimer::timeout, this, [this] { emit progressChanged(*m_progress); });
}

PhotoExport::~PhotoExport()
{
    m_queue.finish();
}

bool PhotoExport::checkForFileAvailabilityAtFilePath(const QString &path)
{
    return QFileInfo::exists(path);
}

bool PhotoExport::checkForLockedFile(const QString &path)
{
    const std::optional<FileAttributes> attributes = FileAttributes::ofPath(path);
    const bool locked = attributes && attributes->isImmutable;
    if (locked)
        qCInfo(lcSession) << "File is locked";
    return locked;
}

void PhotoExport::checkSource(const std::shared_ptr<PhotoFile> &photo, bool forSharing,
                              std::function<void(Source)> answer)
{
    m_checks.run([photo, forSharing] { return stateOf(*photo, forSharing); }, std::move(answer));
}

void PhotoExport::start(ExportJob job, const ExportWriter::Settings &settings, const QString &path, Finished finished)
{
    m_progress = std::make_shared<std::atomic<double>>(0.0);
    job.progress = [progress = m_progress](double fraction) { *progress = fraction; };
    emit progressChanged(0);
    m_progressPoll.start();
    m_queue.run([work = m_work, job = std::move(job), settings, path] { return run(work, job, settings, path); },
                [this, finished = std::move(finished)](const Result &result) {
                    m_progressPoll.stop();
                    emit progressChanged(0);
                    finished(result);
                });
}

} // namespace hazelmark
