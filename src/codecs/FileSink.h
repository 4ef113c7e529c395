#pragma once

#include "Outcome.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace hazelmark {

/// A file that an encoder writes to. Every byte is checked: the first error is kept, and all that follows fails.
/// Positions can be gone back to, as TIFF needs.
class FileSink
{
public:
    /// The file is open for reading and writing, and empty. `path` is what failures are about.
    FileSink(int descriptor, const QString &path);
    ~FileSink();
    FileSink(const FileSink &) = delete;
    FileSink &operator=(const FileSink &) = delete;

    bool write(const void *bytes, size_t count);
    /// Also beyond the end, as lseek does; -1 on failure.
    int64_t seek(int64_t offset, int whence);
    /// `count` bytes from `offset` of what has been written, or fewer where the file ends. Where writing goes on stays.
    QByteArray readAt(int64_t offset, size_t count);
    bool hasFailed() const { return m_error != 0; }

    /// Done only when everything was written. The file system may report a full disk only here.
    Outcome<Done> finish();
    /// What went wrong with the file if anything did, else that the encoder itself failed with `encoderMessage`.
    Failure failure(const QString &encoderMessage) const;

private:
    QString m_path;
    int m_descriptor; ///< its own: closing it is how a file system is asked
    int m_error = 0;
};

} // namespace hazelmark
