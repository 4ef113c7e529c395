#pragma once

#include <QString>

#include <optional>

struct stat;

namespace hazelmark {

/// Which file it is and in which state: what tells whether a file is still the one that was read. Keeps nothing open.
/// Whoever writes into a file or puts another one in its place changes its identity.
struct FileIdentity
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;    ///< bytes
    qint64 seconds = 0; ///< of the modification time, since 1970 UTC
    qint64 nanoseconds = 0;

    explicit FileIdentity(const struct stat &status);
    /// Absent for a descriptor that is not open.
    static std::optional<FileIdentity> ofDescriptor(int descriptor);
    /// Links are followed. Absent when there is no such file.
    static std::optional<FileIdentity> ofPath(const QString &path);

    /// The same file in the same state.
    bool operator==(const FileIdentity &) const = default;
    /// The same file by whatever name, in whatever state.
    bool isSameFileAs(const FileIdentity &other) const { return device == other.device && inode == other.inode; }
};

} // namespace hazelmark
