#pragma once

#include <QString>

namespace hazelmark {

/// Why a file could not be read or written. The reason is for code to branch on (and for a window to translate);
/// `sentence()` is the English text that the command line prints.
struct Failure
{
    enum class Reason {
        NoSuchFile,
        IsFolder,
        NotReadable, ///< permission denied, or the device failed
        Empty,       ///< zero bytes
        NotAPicture, ///< the content is of no type that can be decoded, whatever the name says
        Damaged,     ///< the header reads, but the picture data does not
        Truncated,   ///< the picture data ends too early
        TooLarge,    ///< more pixels than kMaxPixels
        OutOfMemory,
        UnsupportedFormat, ///< a picture that cannot be decoded, or a format that cannot be written
        NoSuchFolder,
        FolderNotWritable,
        ReadOnly,
        Immutable,       ///< the file system's immutable flag is set
        NotARegularFile, ///< a device, a pipe, a socket
        SameAsSource,    ///< writing would change the photo itself, or another file that is read for the picture
        SourceChanged,   ///< the photo is not as it was when it was opened
        DiskFull,
        WriteFailed,
        EncodeFailed,
        NotAPainting, ///< no file of strokes, or one of a newer version
    };

    Reason reason;
    QString path;   ///< the file (or folder) that the failure is about, as the person named it
    QString detail; ///< what the library or the system said; may be empty

    /// Why writing to `path` failed with this errno.
    static Failure ofWriteError(int error, const QString &path);

    /// One sentence that names the file and the reason, with a full stop and without a line end.
    QString sentence() const;
};

} // namespace hazelmark
