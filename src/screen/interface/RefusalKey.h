#pragma once

#include "Failure.h"

#include <QString>

namespace hazelmark {

/// The key of the sentence that tells a person why a file could not be read or written. It has one placeholder: the
/// file's name.
inline QString refusalKey(Failure::Reason reason)
{
    using Reason = Failure::Reason;
    switch (reason) {
    case Reason::NoSuchFile:
        return QStringLiteral("REFUSED_NO_SUCH_FILE");
    case Reason::IsFolder:
        return QStringLiteral("REFUSED_IS_FOLDER");
    case Reason::NotReadable:
        return QStringLiteral("REFUSED_NOT_READABLE");
    case Reason::Empty:
        return QStringLiteral("REFUSED_EMPTY");
    case Reason::NotAPicture:
        return QStringLiteral("REFUSED_NOT_A_PICTURE");
    case Reason::Damaged:
        return QStringLiteral("REFUSED_DAMAGED");
    case Reason::Truncated:
        return QStringLiteral("REFUSED_TRUNCATED");
    case Reason::TooLarge:
        return QStringLiteral("REFUSED_TOO_LARGE");
    case Reason::OutOfMemory:
        return QStringLiteral("REFUSED_OUT_OF_MEMORY");
    case Reason::UnsupportedFormat:
        return QStringLiteral("REFUSED_UNSUPPORTED_FORMAT");
    case Reason::NoSuchFolder:
        return QStringLiteral("REFUSED_NO_SUCH_FOLDER");
    case Reason::FolderNotWritable:
        return QStringLiteral("REFUSED_FOLDER_NOT_WRITABLE");
    case Reason::ReadOnly:
        return QStringLiteral("REFUSED_READ_ONLY");
    case Reason::Immutable:
        return QStringLiteral("REFUSED_IMMUTABLE");
    case Reason::NotARegularFile:
        return QStringLiteral("REFUSED_NOT_A_REGULAR_FILE");
    case Reason::SameAsSource:
        return QStringLiteral("REFUSED_SAME_AS_SOURCE");
    case Reason::SourceChanged:
        return QStringLiteral("REFUSED_SOURCE_CHANGED");
    case Reason::DiskFull:
        return QStringLiteral("REFUSED_DISK_FULL");
    case Reason::WriteFailed:
        return QStringLiteral("REFUSED_WRITE_FAILED");
    case Reason::EncodeFailed:
        return QStringLiteral("REFUSED_ENCODE_FAILED");
    case Reason::NotAPainting:
        return QStringLiteral("REFUSED_NOT_A_PAINTING");
    }
    Q_UNREACHABLE();
}

} // namespace hazelmark
