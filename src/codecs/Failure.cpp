#include "Failure.h"

#include <cerrno>
#include <cstring>

namespace hazelmark {

namespace {

QString reasonText(Failure::Reason reason)
{
    using Reason = Failure::Reason;
    switch (reason) {
    case Reason::NoSuchFile:
        return QStringLiteral("there is no such file");
    case Reason::IsFolder:
        return QStringLiteral("it is a folder");
    case Reason::NotReadable:
        return QStringLiteral("it cannot be read");
    case Reason::Empty:
        return QStringLiteral("it is empty");
    case Reason::NotAPicture:
        return QStringLiteral("it is not a picture of a known type");
    case Reason::Damaged:
        return QStringLiteral("its picture data is damaged");
    case Reason::Truncated:
        return QStringLiteral("its picture data is cut off");
    case Reason::TooLarge:
        return QStringLiteral("it has more than a thousand megapixels");
    case Reason::OutOfMemory:
        return QStringLiteral("there is not enough memory for it");
    case Reason::UnsupportedFormat:
        return QStringLiteral("this format is not supported");
    case Reason::NoSuchFolder:
        return QStringLiteral("its folder does not exist");
    case Reason::FolderNotWritable:
        return QStringLiteral("its folder cannot be written to");
    case Reason::ReadOnly:
        return QStringLiteral("the existing file is read-only");
    case Reason::Immutable:
        return QStringLiteral("the existing file is locked");
    case Reason::NotARegularFile:
        return QStringLiteral("it is not a regular file");
    case Reason::SameAsSource:
        return QStringLiteral("it is a file that the picture is made from, which is never changed");
    case Reason::SourceChanged:
        return QStringLiteral("it has changed since it was opened");
    case Reason::DiskFull:
        return QStringLiteral("the disk is full");
    case Reason::WriteFailed:
        return QStringLiteral("it could not be written");
    case Reason::EncodeFailed:
        return QStringLiteral("the picture could not be encoded");
    case Reason::NotAPainting:
        return QStringLiteral("it holds no painting that can be read");
    }
    Q_UNREACHABLE();
}

} // namespace

Failure Failure::ofWriteError(int error, const QString &path)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return {Reason::DiskFull, path, {}};
    case ENOENT:
    case ENOTDIR:
        return {Reason::NoSuchFolder, path, {}};
    case EACCES:
    case EPERM:
    case EROFS:
        return {Reason::FolderNotWritable, path, {}};
    case EISDIR:
        return {Reason::IsFolder, path, {}};
    default:
        return {Reason::WriteFailed, path, QString::fromLocal8Bit(std::strerror(error))};
    }
}

QString Failure::sentence() const
{
    QString text = path + QStringLiteral(": ") + reasonText(reason);
    if (!detail.isEmpty())
        text += QStringLiteral(" (") + detail.simplified() + QLatin1Char(')');
    return text + QLatin1Char('.');
}

} // namespace hazelmark
