#include "SafeFile.h"

#include "FileAttributes.h"
#include "ImageIoLog.h"

#include <QFile>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

namespace {

using Reason = Failure::Reason;

constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr int kMostLinks = 40; // as many as the kernel follows

/// Temporary files that are there right now, for the signal handler, which may use neither memory nor locks.
class TemporaryRegistry
{
public:
    void add(const QByteArray &path)
    {
        for (Slot &slot : m_slots) {
            int expected = kFree;
            if (std::size_t(path.size()) < sizeof slot.path && slot.state.compare_exchange_strong(expected, kTaken)) {
                std::memcpy(slot.path, path.constData(), std::size_t(path.size()) + 1);
                slot.state = kSet;
                return;
            }
        }
    }

    void remove(const QByteArray &path)
    {
        for (Slot &slot : m_slots) {
            if (slot.state == kSet && path == slot.path)
                slot.state = kFree;
        }
    }

    void unlinkAll()
    {
        for (Slot &slot : m_slots) {
            if (slot.state == kSet)
                ::unlink(slot.path);
        }
    }

private:
    enum { kFree, kTaken, kSet };
    struct Slot
    {
        std::atomic<int> state = kFree;
        char path[4096];
    };
    std::array<Slot, 8> m_slots;
};

TemporaryRegistry temporaries;

void removeAndEnd(int signal)
{
    temporaries.unlinkAll();
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

/// The file that `path` leads to, links followed even if there is nothing at their end; nothing for a ring of links.
std::optional<QByteArray> finalPlace(QByteArray path)
{
    for (int links = 0; links < kMostLinks; ++links) {
        char target[4096];
        const ssize_t length = ::readlink(path.constData(), target, sizeof target);
        if (length < 0)
            return path;
        const QByteArray next(target, qsizetype(length));
        path = next.startsWith('/') ? next : folderOf(path) + '/' + next;
    }
    return std::nullopt;
}

mode_t modeOfNewFiles()
{
    // Asking umask() for the value would change it for a moment, for all threads.
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("Umask:"))
                return 0666 & ~mode_t(line.mid(6).trimmed().toUInt(nullptr, 8));
        }
    }
    return 0644;
}

Outcome<Done> checkFolder(const QByteArray &place, const QString &path)
{
    const QByteArray folder = folderOf(place);
    struct stat status;
    if (::stat(folder.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return Failure{Reason::NoSuchFolder, path, {}};
    if (!(status.st_mode & kAnyWriteBit) || ::access(folder.constData(), W_OK | X_OK) != 0)
        return Failure{Reason::FolderNotWritable, path, {}};
    return Done();
}

Outcome<Done> checkExisting(const QByteArray &place, const struct stat &status, const QString &path,
                            const SourcePaths &sources)
{
    if (S_ISDIR(status.st_mode))
        return Failure{Reason::IsFolder, path, {}};
    if (!S_ISREG(status.st_mode))
        return Failure{Reason::NotARegularFile, path, {}};
    for (const SourcePath &source : sources) {
        const std::optional<FileIdentity> identity = FileIdentity::ofPath(source.path);
        if (identity && identity->isSameFileAs(FileIdentity(status)))
            return Failure{Reason::SameAsSource, path, {}};
    }
    const std::optional<FileAttributes> attributes = FileAttributes::ofPath(QFile::decodeName(place));
    if (attributes && attributes->isImmutable)
        return Failure{Reason::Immutable, path, {}};
    if (!(status.st_mode & kAnyWriteBit) || ::access(place.constData(), W_OK) != 0)
        return Failure{Reason::ReadOnly, path, {}};
    return Done();
}

Outcome<Done> checkUnchanged(const SourcePaths &sources)
{
    for (const auto &[path, asOpened] : sources) {
        if (asOpened && FileIdentity::ofPath(path) != asOpened)
            return Failure{Reason::SourceChanged, path, {}};
    }
    return Done();
}

bool flushed(const QByteArray &path, int flags)
{
    const int descriptor = ::open(path.constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool done = ::fsync(descriptor) == 0;
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return done;
}

} // namespace

Outcome<Done> SafeFile::checkDestination(const QString &path, const SourcePaths &sources)
{
    const std::optional<QByteArray> place = finalPlace(QFile::encodeName(path));
    if (!place || path.isEmpty())
        return Failure{Reason::NotARegularFile, path, {}};
    struct stat status;
    if (::stat(place->constData(), &status) == 0) {
        const Outcome<Done> existing = checkExisting(*place, status, path, sources);
        if (!existing)
            return existing;
    }
    return checkFolder(*place, path);
}

Outcome<SafeFile> SafeFile::create(const QString &path, const SourcePaths &sources)
{
    const Outcome<Done> allowed = checkDestination(path, sources);
    if (!allowed)
        return allowed.failure();
    QByteArray name = folderOf(*finalPlace(QFile::encodeName(path))) + "/.hazelmark-XXXXXX";
    const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0)
        return Failure::ofWriteError(errno, path);
    ::close(descriptor);
    temporaries.add(name);
    return SafeFile(path, sources, QFile::decodeName(name));
}

SafeFile::SafeFile(QString path, SourcePaths sources, QString temporaryPath)
    : m_path(std::move(path))
    , m_sources(std::move(sources))
    , m_temporaryPath(std::move(temporaryPath))
{
}

SafeFile::SafeFile(SafeFile &&other) noexcept
    : m_path(std::move(other.m_path))
    , m_sources(std::move(other.m_sources))
    , m_temporaryPath(std::exchange(other.m_temporaryPath, {}))
{
}

SafeFile::~SafeFile()
{
    if (m_temporaryPath.isEmpty())
        return;
    const QByteArray temporary = QFile::encodeName(m_temporaryPath);
    ::unlink(temporary.constData());
    temporaries.remove(temporary);
}

Outcome<Done> SafeFile::commit()
{
    const Outcome<Done> allowed = checkDestination(m_path, m_sources);
    if (!allowed)
        return allowed;
    const QByteArray place = *finalPlace(QFile::encodeName(m_path));
    const QByteArray temporary = QFile::encodeName(m_temporaryPath);
    struct stat replaced;
    const bool replaces = ::stat(place.constData(), &replaced) == 0;
    const mode_t mode = replaces ? replaced.st_mode & 0777 : modeOfNewFiles();
    if (!flushed(temporary, O_RDONLY) || ::chmod(temporary.constData(), mode) != 0)
        return Failure::ofWriteError(errno, m_path);
    const Outcome<Done> unchanged = checkUnchanged(m_sources);
    if (!unchanged)
        return unchanged;
    if (::rename(temporary.constData(), place.constData()) != 0)
        return Failure::ofWriteError(errno, m_path);
    temporaries.remove(temporary);
    m_temporaryPath.clear();
    // The file is in place whole; that the folder's entry is on the disk too is as much as can be asked for.
    if (!flushed(folderOf(place), O_RDONLY | O_DIRECTORY))
        qCWarning(lcImageIo) << "folder not flushed:" << m_path;
    return Done();
}

Outcome<Done> encodeSafely(const QImage &pixels, const EncodeOptions &options, const QString &path,
                           const SourcePaths &sources)
{
    Outcome<SafeFile> file = SafeFile::create(path, sources);
    if (!file)
        return file.failure();
    const Outcome<Done> encoded = encodePicture(pixels, options, file->temporaryPath());
    if (encoded)
        return file->commit();
    Failure failure = encoded.failure();
    failure.path = path; // a person knows nothing of the temporary file
    return failure;
}

void SafeFile::removeTemporariesOnSignals()
{
    for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (::signal(signal, removeAndEnd) == SIG_IGN) // so that nohup keeps its promise
            ::signal(signal, SIG_IGN);
    }
}

} // namespace hazelmark
