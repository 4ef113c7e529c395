#pragma once

#include "Encoder.h"
#include "FileIdentity.h"
#include "Outcome.h"

#include <QString>

#include <optional>
#include <vector>

namespace hazelmark {

/// A file that a new one is made from. It is never replaced.
struct SourcePath
{
    QString path;
    /// Where set, the file must still be this one, unchanged, when the new file takes its place: what was painted over
    /// the picture that was opened is not to be laid over another.
    std::optional<FileIdentity> asOpened = std::nullopt;
};
using SourcePaths = std::vector<SourcePath>;

/// Puts a file in place whole or not at all. The content is written to a temporary file in the folder of the final
/// place, and takes the place in one step when it is whole and on the disk; until then an existing file stays byte for
/// byte as it was, and whenever something goes wrong the temporary file is removed.
///
/// A link is followed: the file that it leads to is replaced, the link stays.
class SafeFile
{
public:
    /// Whether a file may be put at `path` without changing a source. Asked before anything is rendered, and again by
    /// commit(). Permission bits count for the superuser too.
    static Outcome<Done> checkDestination(const QString &path, const SourcePaths &sources);

    /// Creates the temporary file.
    static Outcome<SafeFile> create(const QString &path, const SourcePaths &sources);

    SafeFile(SafeFile &&other) noexcept;
    SafeFile &operator=(SafeFile &&) = delete;
    /// Removes the temporary file if it was not committed.
    ~SafeFile();

    /// Where the content is to be written, by path: the file is there, empty.
    const QString &temporaryPath() const { return m_temporaryPath; }

    /// Flushes the content to the disk, gives the file the mode that a new one would have (or that the replaced one
    /// has) and puts it in place. Fails with SourceChanged where a source is no more what it was.
    Outcome<Done> commit();

    /// Makes the signals that end a program (interrupt, terminate, hang up) remove the temporary files first.
    static void removeTemporariesOnSignals();

private:
    SafeFile(QString path, SourcePaths sources, QString temporaryPath);

    QString m_path;
    SourcePaths m_sources;
    QString m_temporaryPath; ///< empty once there is nothing to remove
};

/// Puts the picture as a file at `path`, as encodePicture() writes it, whole or not at all. A failure is about `path`.
Outcome<Done> encodeSafely(const QImage &pixels, const EncodeOptions &options, const QString &path,
                           const SourcePaths &sources);

} // namespace hazelmark
