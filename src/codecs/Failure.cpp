#include "Failure.h"

#include <cerrno>
#include <cstring>
#include <iterator>

namespace hazelmark {

namespace {

/// In the order of the reasons.
constexpr const char *kReasonTexts[] = {
    "there is no such file",
    "it is a folder",
    "it cannot be read",
    "it is empty",
    "it is not a picture of a known type",
    "its picture data is damaged",
    "its picture data is cut off",
    "it has more than a thousand megapixels",
    "there is not enough memory for it",
    "this format is not supported",
    "its folder does not exist",
    "its folder cannot be written to",
    "the existing file is read-only",
    "the existing file is locked",
    "it is not a regular file",
    "it is a file that the picture is made from, which is never changed",
    "it has changed since it was opened",
    "the disk is full",
    "it could not be written",
    "the picture could not be encoded",
    "it holds no painting that can be read",
};
static_assert(std::size(kReasonTexts) == size_t(Failure::Reason::NotAPainting) + 1);

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
    QString text = path + QStringLiteral(": ") + QLatin1String(kReasonTexts[int(reason)]);
    if (!detail.isEmpty())
        text += QStringLiteral(" (") + detail.simplified() + QLatin1Char(')');
    return text + QLatin1Char('.');
}

} // namespace hazelmark
