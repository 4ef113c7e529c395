#include "Guarded.h"
#include "JpegSegments.h"
#include "PictureEncoders.h"
#include "PixelRows.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

#include <jerror.h>

namespace hazelmark {

namespace {

constexpr size_t kBufferSize = 256 * 1024;
constexpr int kRowsPerCall = 16;

class JpegWriter
{
public:
    explicit JpegWriter(FileSink &sink);
    ~JpegWriter() { jpeg_destroy_compress(&m_lib); }
    JpegWriter(const JpegWriter &) = delete;
    JpegWriter &operator=(const JpegWriter &) = delete;

    Outcome<Done> encode(const QImage &pixels, const EncodeOptions &options);

private:
    [[noreturn]] static void leave(j_common_ptr lib);
    static void restartBuffer(j_compress_ptr lib);
    static boolean flush(j_compress_ptr lib);
    static void flushRest(j_compress_ptr lib);
    static JpegWriter *writerOf(j_compress_ptr lib) { return static_cast<JpegWriter *>(lib->client_data); }

    void start(const QImage &pixels, const EncodeOptions &options);
    void setDensity(QSizeF dpi);
    void writeOwnRows(const QImage &pixels);
    void writeConvertedRows(const QImage &pixels, uint8_t *scratch);

    FileSink &m_sink;
    jpeg_compress_struct m_lib = {};
    jpeg_error_mgr m_errors = {};
    jpeg_destination_mgr m_destination = {};
    std::jmp_buf m_jump;
    char m_message[JMSG_LENGTH_MAX] = {};
    std::vector<JOCTET> m_buffer;
    bool m_isCreated = false;
};

JpegWriter::JpegWriter(FileSink &sink)
    : m_sink(sink)
    , m_buffer(kBufferSize)
{
    m_lib.err = jpeg_std_error(&m_errors);
    m_lib.client_data = this;
    m_errors.error_exit = &leave;
    m_errors.emit_message = [](j_common_ptr, int) {};
    m_destination.init_destination = &restartBuffer;
    m_destination.empty_output_buffer = &flush;
    m_destination.term_destination = &flushRest;
    m_isCreated = runGuarded(m_jump, [this] { jpeg_create_compress(&m_lib); });
    m_lib.dest = &m_destination;
}

void JpegWriter::leave(j_common_ptr lib)
{
    auto *self = static_cast<JpegWriter *>(lib->client_data);
    lib->err->format_message(lib, self->m_message);
    std::longjmp(self->m_jump, 1);
}

void JpegWriter::restartBuffer(j_compress_ptr lib)
{
    JpegWriter *self = writerOf(lib);
    self->m_destination.next_output_byte = self->m_buffer.data();
    self->m_destination.free_in_buffer = kBufferSize;
}

/// The library calls this with a full buffer, whatever `free_in_buffer` says.
boolean JpegWriter::flush(j_compress_ptr lib)
{
    JpegWriter *self = writerOf(lib);
    if (!self->m_sink.write(self->m_buffer.data(), kBufferSize))
        ERREXIT(lib, JERR_FILE_WRITE);
    restartBuffer(lib);
    return TRUE;
}

void JpegWriter::flushRest(j_compress_ptr lib)
{
    JpegWriter *self = writerOf(lib);
    if (!self->m_sink.write(self->m_buffer.data(), kBufferSize - self->m_destination.free_in_buffer))
        ERREXIT(lib, JERR_FILE_WRITE);
}

Outcome<Done> JpegWriter::encode(const QImage &pixels, const EncodeOptions &options)
{
    const std::vector<JpegSegment> segments = metadataSegments(options.metadata);
    const bool isReady = pixels.format() == QImage::Format_RGBX8888;
    std::vector<uint8_t> scratch(isReady ? 0 : size_t(pixels.width()) * 3 * kRowsPerCall);
    const bool isWritten =
        m_isCreated && runGuarded(m_jump, [&] {
            start(pixels, options);
            for (const JpegSegment &segment : segments) {
                jpeg_write_marker(&m_lib, segment.marker, reinterpret_cast<const JOCTET *>(segment.data.constData()),
                                  unsigned(segment.data.size()));
            }
            if (isReady)
                writeOwnRows(pixels);
            else
                writeConvertedRows(pixels, scratch.data());
            jpeg_finish_compress(&m_lib);
        });
    if (!isWritten)
        return m_sink.failure(QString::fromLatin1(m_message));
    return Done{};
}

void JpegWriter::start(const QImage &pixels, const EncodeOptions &options)
{
    const bool isReady = pixels.format() == QImage::Format_RGBX8888;
    m_lib.image_width = JDIMENSION(pixels.width());
    m_lib.image_height = JDIMENSION(pixels.height());
    m_lib.in_color_space = isReady ? JCS_EXT_RGBX : JCS_RGB;
    m_lib.input_components = isReady ? 4 : 3;
    jpeg_set_defaults(&m_lib);
    jpeg_set_quality(&m_lib, std::clamp(options.jpegQuality, 0, 100), TRUE);
    for (int component = 0; component < m_lib.num_components; ++component)
        m_lib.comp_info[component].h_samp_factor = m_lib.comp_info[component].v_samp_factor = 1;
    if (options.metadata.dpi)
        setDensity(*options.metadata.dpi);
    jpeg_start_compress(&m_lib, TRUE);
}

/// Densities that the 16-bit fields cannot hold are left out.
void JpegWriter::setDensity(QSizeF dpi)
{
    constexpr UINT8 kPerInch = 1;
    const double x = std::round(dpi.width());
    const double y = std::round(dpi.height());
    if (!(x >= 1 && x <= 65535 && y >= 1 && y <= 65535))
        return;
    m_lib.density_unit = kPerInch;
    m_lib.X_density = UINT16(x);
    m_lib.Y_density = UINT16(y);
}

/// Rows go from the image's memory into the library as they are.
void JpegWriter::writeOwnRows(const QImage &pixels)
{
    const uchar *bits = pixels.constBits();
    const qsizetype stride = pixels.bytesPerLine();
    JSAMPROW rows[kRowsPerCall];
    while (m_lib.next_scanline < m_lib.image_height) {
        const JDIMENSION first = m_lib.next_scanline;
        const JDIMENSION count = std::min(JDIMENSION(kRowsPerCall), m_lib.image_height - first);
        for (JDIMENSION row = 0; row < count; ++row)
            rows[row] = const_cast<uchar *>(bits) + qsizetype(first + row) * stride; // the library only reads them
        jpeg_write_scanlines(&m_lib, rows, count);
    }
}

void JpegWriter::writeConvertedRows(const QImage &pixels, uint8_t *scratch)
{
    JSAMPROW rows[kRowsPerCall];
    while (m_lib.next_scanline < m_lib.image_height) {
        const JDIMENSION first = m_lib.next_scanline;
        const JDIMENSION count = std::min(JDIMENSION(kRowsPerCall), m_lib.image_height - first);
        for (JDIMENSION row = 0; row < count; ++row) {
            rows[row] = scratch + size_t(row) * m_lib.image_width * 3;
            readRowOnWhite(pixels, int(first + row), rows[row]);
        }
        jpeg_write_scanlines(&m_lib, rows, count);
    }
}

} // namespace

Outcome<Done> encodeJpeg(const QImage &pixels, const EncodeOptions &options, FileSink &sink)
{
    return JpegWriter(sink).encode(pixels, options);
}

} // namespace hazelmark
