#pragma once

#include "SourceFile.h"

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

#include <jerror.h>

namespace hazelmark {

class JpegSource;

/// The library's `client_data`. Takes its errors, and those of its warnings that mean missing or damaged picture data.
/// Where the file is cut off, the warning becomes an error: the library itself would fill the rest with grey and report
/// success. Damage in the middle is only noted: the picture comes to its end, as every viewer shows it.
struct JpegErrors
{
    explicit JpegErrors(SourceFile &source);
    JpegErrors(const JpegErrors &) = delete;
    JpegErrors &operator=(const JpegErrors &) = delete;

    /// After a jump: what the file is to be refused for.
    Failure failure() const;

    jpeg_error_mgr manager = {};
    std::jmp_buf jump;
    SourceFile &source;
    JpegSource *input = nullptr;
    int markerCount = 0; ///< in the header
    bool isDamaged = false;
    bool isCutOff = false;
    unsigned seenComponents = 0; ///< a bit for each that a scan has had
    char message[JMSG_LENGTH_MAX] = {};
};

/// Leaves the library with a message of our own.
[[noreturn]] void refuseJpeg(j_common_ptr lib, const char *message);

/// The library's data source on a SourceFile. At the end of the file it hands out an end-of-image marker, so that the
/// decoder itself finds out whether anything is missing.
class JpegSource
{
public:
    JpegSource(SourceFile &source, JpegErrors &errors);
    JpegSource(const JpegSource &) = delete;
    JpegSource &operator=(const JpegSource &) = delete;

    void attach(jpeg_decompress_struct &lib) { lib.src = &m_manager; }
    bool hasEnded() const { return m_hasEnded; }
    bool hasReadError() const { return m_hasReadError; }
    /// Up to endHeader() only so many bytes are handed out (skipped ones do not count), and so many markers believed:
    /// headers are read where nobody wants to wait.
    bool isInHeader() const { return m_isInHeader; }
    void endHeader() { m_isInHeader = false; }
    /// Whether the `count` bytes before the read position are all filler (zeros or 0xff).
    bool isFillerBehind(int count) const;

private:
    static boolean fill(j_decompress_ptr lib);
    static void skip(j_decompress_ptr lib, long count);

    jpeg_source_mgr m_manager = {};
    SourceFile &m_source;
    qint64 m_position = 0; ///< in the file, behind what is in the buffer
    std::vector<JOCTET> m_buffer;
    bool m_hasEnded = false;
    bool m_hasReadError = false;
    bool m_isInHeader = true;
    qint64 m_headerSize = 0; ///< bytes handed out so far
};

} // namespace hazelmark
