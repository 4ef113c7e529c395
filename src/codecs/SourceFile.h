#pragma once

#include "FileIdentity.h"
#include "Outcome.h"
#include "Picture.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <memory>

namespace hazelmark {

/// A picture file that is open for reading: a regular, readable file of at least one byte. It has no position, so that
/// any number of readers may go on where they were. Nothing maps it into memory: a file that another program cuts while
/// it is read must end in a failure, not in a bus error.
class SourceFile
{
public:
    /// Fails with NoSuchFile, IsFolder, NotARegularFile (opening a pipe would wait for ever), NotReadable or Empty.
    static Outcome<std::unique_ptr<SourceFile>> open(const QString &path);

    /// A file that is open already and stays so, without a path.
    static Outcome<std::unique_ptr<SourceFile>> ofDescriptor(int descriptor);

    /// For Qt's readers, which move its position.
    QFile &device() { return m_file; }
    int descriptor() const { return m_file.handle(); }
    qint64 size() const { return m_size; }
    /// The file as it was when it was opened.
    const FileIdentity &identity() const { return *m_identity; }
    const QString &path() const { return m_path; }

    /// The first bytes (up to kHeadSize), by which the formats are told apart.
    const QByteArray &head() const { return m_head; }
    static constexpr int kHeadSize = 4096;

    /// Reads up to `count` bytes from `offset`; how many there were, 0 at the end of the file, or -1 when the device
    /// failed.
    qint64 read(qint64 offset, char *bytes, qint64 count) const;
    /// `count` bytes from `offset`, or fewer where the file ends.
    QByteArray bytesAt(qint64 offset, qint64 count) const;

    Failure failure(Failure::Reason reason, const QString &detail = {}) const { return {reason, m_path, detail}; }

    /// Nothing when a picture of this size may be decoded: both sides positive, and no more than kMaxPictureSide
    /// and kMaxPixels.
    std::optional<Failure> checkSize(qint64 width, qint64 height) const;

private:
    explicit SourceFile(const QString &path);
    std::optional<Failure> readBeginning();

    QString m_path;
    QFile m_file;
    qint64 m_size = 0;
    std::optional<FileIdentity> m_identity;
    QByteArray m_head;
};

} // namespace hazelmark
