#include "FileIdentity.h"

#include <QFile>

#include <sys/stat.h>

namespace hazelmark {

FileIdentity::FileIdentity(const struct stat &status)
    : device(status.st_dev)
    , inode(status.st_ino)
    , size(status.st_size)
    , seconds(status.st_mtim.tv_sec)
    , nanoseconds(status.st_mtim.tv_nsec)
{
}

std::optional<FileIdentity> FileIdentity::ofDescriptor(int descriptor)
{
    struct stat status;
    return ::fstat(descriptor, &status) == 0 ? std::optional(FileIdentity(status)) : std::nullopt;
}

std::optional<FileIdentity> FileIdentity::ofPath(const QString &path)
{
    struct stat status;
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(FileIdentity(status))
                                                                     : std::nullopt;
}

} // namespace hazelmark
