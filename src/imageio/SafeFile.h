#pragma once

#include "Encoder.h"
#include "FileDescriptor.h"
#include "FileIdentity.h"
#include "Outcome.h"
#include "TemporaryName.h"

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

/// Puts a file in place whole or not at all. The content is written to a file in the folder of the final place that has
/// no name, or a temporary one, and takes the place in one step when it is whole and on the disk; until then an
/// existing file stays byte for byte as it was, and whenever something goes wrong nothing remains. It is written
/// through the descriptor that it was made with: who may rename files in the folder cannot put another one under the
/// writer's hands.
///
/// A link is followed: the file that it leads to is replaced, the link stays.
class SafeFile
{
public:
    /// Whether a file may be put at `path` without changing a source. Asked before anything is rendered, and again by
    /// commit(). Permission bits count for the superuser too.
    static Outcome<Done> checkDestination(const QString &path, const SourcePaths &sources);

    /// Makes the file, and takes away what killed programs left in the folder.
    static Outcome<SafeFile> create(const QString &path, const SourcePaths &sources);

    /// Where the content is to be written: empty, open for reading and writing. It stays open until this goes.
    int descriptor() const { return m_file.get(); }

    /// Writes bytes behind what was written before.
    Outcome<Done> write(const QByteArray &bytes);

    /// Flushes the content to the disk and puts it in place. A new file has the mode that the process gives to new
    /// files, one that replaces another has its mode and, where allowed, its owner and group. Fails with SourceChanged
    /// where a source is no more what it was.
    Outcome<Done> commit();

    /// Makes the signals that end a program (interrupt, quit, terminate, hang up) remove the temporary names first, and
    /// lets a file that grows beyond what the process may write fail like one on a full disk.
    static void handleSignals();

private:
    SafeFile(QString path, SourcePaths sources, QByteArray place);

    QString m_path;
    SourcePaths m_sources;
    QByteArray m_place; ///< what the path leads to
    FileDescriptor m_folder;
    FileDescriptor m_file;
    TemporaryName m_temporary; ///< none as long as the file has no name
};

/// Puts the picture as a file at `path`, as encodePicture() writes it, whole or not at all. A failure is about `path`.
Outcome<Done> encodeSafely(const QImage &pixels, const EncodeOptions &options, const QString &path,
                           const SourcePaths &sources);

} // namespace hazelmark
