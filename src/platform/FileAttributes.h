#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace hazelmark {

/// What the file system says of one file. Links are followed.
struct FileAttributes
{
    quint64 size = 0;  ///< bytes
    QDateTime created; ///< the birth time, or the modification time where the file system keeps none
    bool isImmutable = false;
    bool isRegularFile = false; ///< not a folder, device, pipe or socket

    /// Absent when there is no such file or its attributes may not be read.
    static std::optional<FileAttributes> ofPath(const QString &path);
};

/// Bytes that the person may still write on the volume of `folder`. Absent when the folder is not there or the volume
/// does not say. Asks the file system itself: the list of mounted volumes is not complete in every container.
std::optional<quint64> availableBytes(const QString &folder);

} // namespace hazelmark
