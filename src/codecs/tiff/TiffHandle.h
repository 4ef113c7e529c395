#pragma once

#include "FileSink.h"
#include "SourceFile.h"

#include <QString>

#include <tiffio.h>

namespace hazelmark {

/// A TIFF file that is open in the library, on a SourceFile or a FileSink. Keeps the first of the library's error
/// messages, and those of its warnings that mean missing or damaged picture data.
class TiffHandle
{
public:
    explicit TiffHandle(SourceFile &source);
    enum class ByteOrder { LittleEndian, BigEndian };
    /// `isBig`: the form with 64-bit offsets, for files that could pass 4 GB.
    TiffHandle(FileSink &sink, bool isBig, ByteOrder byteOrder);
    ~TiffHandle() { close(); }
    TiffHandle(const TiffHandle &) = delete;
    TiffHandle &operator=(const TiffHandle &) = delete;

    TIFF *get() const { return m_tiff; }
    void close();

    bool hasError() const { return m_hasError; }
    void clearError() { m_hasError = false; }
    /// Whether a read asked for bytes beyond the end of the file.
    bool hasHitEnd() const { return m_hasHitEnd; }
    /// Whether a colour profile was passed over because the file ends before it.
    bool hasLostProfile() const { return m_hasLostProfile; }
    const QString &message() const { return m_message; }

    /// Up to here the library gets only so much of a file: it reads the values of all the tags that it meets, and
    /// passes over those that it does not get.
    void endHeader() { m_isInHeader = false; }

private:
    static TIFFOpenOptions *makeOptions(TiffHandle *self);
    static int takeError(TIFF *, void *self, const char *module, const char *format, va_list arguments);
    static int takeWarning(TIFF *, void *self, const char *module, const char *format, va_list arguments);
    void keep(const QString &text);

    SourceFile *m_source = nullptr;
    qint64 m_position = 0; ///< in the source
    FileSink *m_sink = nullptr;
    TIFF *m_tiff = nullptr;
    QString m_message;
    bool m_hasError = false;
    bool m_hasHitEnd = false;
    bool m_hasLostProfile = false;
    bool m_isInHeader = true;
    tmsize_t m_headerSize = 0; ///< bytes handed out so far
};

} // namespace hazelmark
