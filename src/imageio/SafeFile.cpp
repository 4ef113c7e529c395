#include "SafeFile.h"

#include "FileAttributes.h"
#include "Log.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

namespace {

using Reason = Failure::Reason;

constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr int kMostLinks = 40; // as many as the kernel follows

void removeAndEnd(int signal)
{
    TemporaryName::removeAll();
    ::signal(signal, SIG_DFL);
    ::raise(signal);
}

void carryOn(int /*signal*/) {}

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

/// The name of a file in its folder.
const char *nameOf(const QByteArray &place)
{
    return place.constData() + place.lastIndexOf('/') + 1;
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

/// What the path leads to and how it is there; nothing where there is no file.
Outcome<std::optional<struct stat>> checkPlace(const QByteArray &place, const QString &path, const SourcePaths &sources)
{
    struct stat status;
    const bool exists = ::lstat(place.constData(), &status) == 0;
    const Outcome<Done> allowed = exists ? checkExisting(place, status, path, sources) : Outcome<Done>(Done());
    if (!allowed)
        return allowed.failure();
    const Outcome<Done> folder = checkFolder(place, path);
    if (!folder)
        return folder.failure();
    return exists ? std::optional(status) : std::nullopt;
}

/// As far as this process may and the file system can.
void keepOwnerAndMode(int file, const struct stat &replaced, const QString &path)
{
    mode_t mode = replaced.st_mode & 0777;
    // What another group may do now is what all others may, too.
    if (::fchown(file, replaced.st_uid, replaced.st_gid) != 0 && ::fchown(file, uid_t(-1), replaced.st_gid) != 0)
        mode &= ~mode_t(S_IRWXG) | (mode & S_IRWXO) << 3;
    if (::fchmod(file, mode) != 0)
        qCWarning(lcImageIo) << "mode not kept:" << path;
}

bool flushedFolder(int folder)
{
    const FileDescriptor readable(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return readable && ::fsync(readable.get()) == 0;
}

} // namespace

Outcome<Done> SafeFile::checkDestination(const QString &path, const SourcePaths &sources)
{
    const std::optional<QByteArray> place = finalPlace(QFile::encodeName(path));
    if (!place || path.isEmpty())
        return Failure{Reason::NotARegularFile, path, {}};
    const auto existing = checkPlace(*place, path, sources);
    if (!existing)
        return existing.failure();
    return Done();
}

Outcome<SafeFile> SafeFile::create(const QString &path, const SourcePaths &sources)
{
    const Outcome<Done> allowed = checkDestination(path, sources);
    if (!allowed)
        return allowed.failure();
    SafeFile file(path, sources, *finalPlace(QFile::encodeName(path)));
    file.m_folder = FileDescriptor(::open(folderOf(file.m_place).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!file.m_folder)
        return Failure::ofWriteError(errno, path);
    TemporaryName::removeStale(file.m_folder.get());
    file.m_file = FileDescriptor(TemporaryName::openUnnamed(file.m_folder.get()));
    if (!file.m_file) {
        // What replaces a file is not shown to anybody who may not read that.
        const mode_t mode = ::access(file.m_place.constData(), F_OK) == 0 ? 0600 : 0666;
        file.m_file = FileDescriptor(TemporaryName::openNamed(file.m_folder.get(), mode, file.m_temporary));
    }
    if (!file.m_file)
        return Failure::ofWriteError(errno, path);
    return file;
}

SafeFile::SafeFile(QString path, SourcePaths sources, QByteArray place)
    : m_path(std::move(path))
    , m_sources(std::move(sources))
    , m_place(std::move(place))
{
}

Outcome<Done> SafeFile::write(const QByteArray &bytes)
{
    for (qsizetype written = 0; written < bytes.size();) {
        const ssize_t count = ::write(m_file.get(), bytes.constData() + written, std::size_t(bytes.size() - written));
        if (count < 0 && errno != EINTR)
            return Failure::ofWriteError(errno, m_path);
        written += std::max<ssize_t>(count, 0);
    }
    return Done();
}

Outcome<Done> SafeFile::commit()
{
    if (::fsync(m_file.get()) != 0)
        return Failure::ofWriteError(errno, m_path);
    for (bool placed = false; !placed;) {
        const auto existing = checkPlace(m_place, m_path, m_sources);
        if (!existing)
            return existing.failure();
        const Outcome<Done> unchanged = checkUnchanged(m_sources);
        if (!unchanged)
            return unchanged;
        if (*existing)
            keepOwnerAndMode(m_file.get(), **existing, m_path);
        if (!*existing && !m_temporary)
            placed = TemporaryName::link(m_file.get(), m_folder.get(), nameOf(m_place));
        else if (m_temporary || m_temporary.give(m_file.get(), m_folder.get()))
            placed = m_temporary.renameTo(nameOf(m_place));
        if (!placed && (*existing || errno != EEXIST)) // a file that came meanwhile is looked at first
            return Failure::ofWriteError(errno, m_path);
    }
    // The file is in place whole; that the folder's entry is on the disk too is as much as can be asked for.
    if (!flushedFolder(m_folder.get()))
        qCWarning(lcImageIo) << "folder not flushed:" << m_path;
    return Done();
}

Outcome<Done> encodeSafely(const QImage &pixels, const EncodeOptions &options, const QString &path,
                           const SourcePaths &sources)
{
    Outcome<SafeFile> file = SafeFile::create(path, sources);
    if (!file)
        return file.failure();
    const Outcome<Done> encoded = encodePicture(pixels, options, file->descriptor(), path);
    return encoded ? file->commit() : encoded;
}

void SafeFile::handleSignals()
{
    for (int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        if (::signal(signal, removeAndEnd) == SIG_IGN) // so that nohup keeps its promise
            ::signal(signal, SIG_IGN);
    }
    // Not ignored: that would be passed on to the programs that this one starts.
    ::signal(SIGXFSZ, carryOn);
}

} // namespace hazelmark
