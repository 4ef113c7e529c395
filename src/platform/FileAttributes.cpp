#include "FileAttributes.h"

#include <QFile>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace hazelmark {

namespace {

QDateTime toDateTime(const struct statx_timestamp &time)
{
    return QDateTime::fromMSecsSinceEpoch(time.tv_sec * 1000 + time.tv_nsec / 1'000'000);
}

/// Asked only where statx does not report the flag. File systems without such flags refuse the question.
bool hasImmutableFlag(const QByteArray &nativePath)
{
    const int file = ::open(nativePath.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0)
        return false;
    int flags = 0; // the kernel writes an int here, although the request is declared with a long
    const bool known = ::ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
    ::close(file);
    return known && (flags & FS_IMMUTABLE_FL) != 0;
}

} // namespace

std::optional<FileAttributes> FileAttributes::ofPath(const QString &path)
{
    const QByteArray nativePath = QFile::encodeName(path);
    struct statx status = {};
    if (::statx(AT_FDCWD, nativePath.constData(), AT_STATX_SYNC_AS_STAT, STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
        return std::nullopt;

    FileAttributes attributes;
    attributes.size = status.stx_size;
    attributes.created = toDateTime((status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime);
    attributes.isRegularFile = S_ISREG(status.stx_mode);
    if ((status.stx_attributes_mask & STATX_ATTR_IMMUTABLE) != 0)
        attributes.isImmutable = (status.stx_attributes & STATX_ATTR_IMMUTABLE) != 0;
    else if (attributes.isRegularFile || S_ISDIR(status.stx_mode))
        attributes.isImmutable = hasImmutableFlag(nativePath);
    return attributes;
}

std::optional<quint64> availableBytes(const QString &folder)
{
    struct statvfs volume = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &volume) != 0 || volume.f_blocks == 0)
        return std::nullopt;
    return quint64(volume.f_bavail) * volume.f_frsize;
}

} // namespace hazelmark
