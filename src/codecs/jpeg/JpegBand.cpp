#include "JpegBand.h"

#include "Guarded.h"
#include "PixelRows.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

namespace hazelmark {

namespace {

constexpr int kRowsPerCall = 16;

class JpegCompressor
{
public:
    JpegCompressor();
    ~JpegCompressor() { jpeg_destroy_compress(&m_lib); }
    JpegCompressor(const JpegCompressor &) = delete;
    JpegCompressor &operator=(const JpegCompressor &) = delete;

    /// False with a message when the library failed; `*bytes` are to be freed either way.
    bool encode(const QImage &pixels, int firstRow, int endRow, const JpegBandOptions &options, unsigned char **bytes,
                unsigned long *size);
    const char *message() const { return m_message; }

private:
    [[noreturn]] static void leave(j_common_ptr lib);
    void setUp(const JpegBandOptions &options);
    void setDensity(QSizeF dpi);
    void writeRows(const QImage &pixels, int firstRow, uint8_t *scratch);

    jpeg_compress_struct m_lib = {};
    jpeg_error_mgr m_errors = {};
    std::jmp_buf m_jump;
    char m_message[JMSG_LENGTH_MAX] = {};
    bool m_isCreated = false;
};

JpegCompressor::JpegCompressor()
{
    m_lib.err = jpeg_std_error(&m_errors);
    m_lib.client_data = this;
    m_errors.error_exit = &leave;
    m_errors.emit_message = [](j_common_ptr, int) {};
    m_isCreated = runGuarded(m_jump, [this] { jpeg_create_compress(&m_lib); });
}

void JpegCompressor::leave(j_common_ptr lib)
{
    auto *self = static_cast<JpegCompressor *>(lib->client_data);
    lib->err->format_message(lib, self->m_message);
    std::longjmp(self->m_jump, 1);
}

bool JpegCompressor::encode(const QImage &pixels, int firstRow, int endRow, const JpegBandOptions &options,
                            unsigned char **bytes, unsigned long *size)
{
    const bool isReady = pixels.format() == QImage::Format_RGBX8888;
    std::vector<uint8_t> scratch(isReady ? 0 : size_t(pixels.width()) * 3 * kRowsPerCall);
    m_lib.image_width = JDIMENSION(pixels.width());
    m_lib.image_height = JDIMENSION(endRow - firstRow);
    m_lib.in_color_space = isReady ? JCS_EXT_RGBX : JCS_RGB;
    m_lib.input_components = isReady ? 4 : 3;
    return m_isCreated && runGuarded(m_jump, [&] {
               jpeg_mem_dest(&m_lib, bytes, size);
               setUp(options);
               jpeg_start_compress(&m_lib, TRUE);
               writeRows(pixels, firstRow, isReady ? nullptr : scratch.data());
               jpeg_finish_compress(&m_lib);
           });
}

void JpegCompressor::setUp(const JpegBandOptions &options)
{
    jpeg_set_defaults(&m_lib);
    jpeg_set_quality(&m_lib, std::clamp(options.quality, 0, 100), TRUE);
    for (int component = 0; component < m_lib.num_components; ++component)
        m_lib.comp_info[component].h_samp_factor = m_lib.comp_info[component].v_samp_factor = 1;
    m_lib.restart_interval = options.restartInterval;
    if (options.dpi)
        setDensity(*options.dpi);
}

/// Densities that the 16-bit fields cannot hold are left out.
void JpegCompressor::setDensity(QSizeF dpi)
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

/// Converts the rows into `scratch`; without one they go to the library as they are.
void JpegCompressor::writeRows(const QImage &pixels, int firstRow, uint8_t *scratch)
{
    JSAMPROW pointers[kRowsPerCall];
    while (m_lib.next_scanline < m_lib.image_height) {
        const JDIMENSION first = m_lib.next_scanline;
        const JDIMENSION count = std::min(JDIMENSION(kRowsPerCall), m_lib.image_height - first);
        for (JDIMENSION row = 0; row < count; ++row) {
            const int y = firstRow + int(first + row);
            pointers[row] = scratch ? scratch + size_t(row) * m_lib.image_width * 3
                                    : const_cast<uchar *>(pixels.constScanLine(y)); // the library only reads it
            if (scratch)
                readRowOnWhite(pixels, y, pointers[row]);
        }
        jpeg_write_scanlines(&m_lib, pointers, count);
    }
}

} // namespace

JpegBand::JpegBand(const QImage &pixels, int firstRow, int endRow, const JpegBandOptions &options)
{
    JpegCompressor compressor;
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    const bool isEncoded = compressor.encode(pixels, firstRow, endRow, options, &bytes, &size);
    m_bytes.reset(bytes);
    m_size = isEncoded ? size : 0;
    m_error = QString::fromLatin1(compressor.message());
    if (isEncoded)
        findParts();
}

/// Walks the library's segments: a marker, and a length that counts itself.
void JpegBand::findParts()
{
    constexpr uchar kFrameHeader = 0xc0;
    constexpr uchar kScanHeader = 0xda;
    constexpr uchar kJfif = 0xe0;
    constexpr qsizetype kMarkerSize = 2;
    const uchar *bytes = m_bytes.get();
    m_startSize = kMarkerSize;
    for (qsizetype at = kMarkerSize; m_scanOffset == 0;) {
        const uchar marker = bytes[at + 1];
        const qsizetype next = at + kMarkerSize + qFromBigEndian<quint16>(bytes + at + kMarkerSize);
        if (marker == kJfif)
            m_startSize = next;
        else if (marker == kFrameHeader)
            m_heightOffset = at + kMarkerSize + 3 - m_startSize; // behind the length and the sample depth
        else if (marker == kScanHeader)
            m_scanOffset = next;
        at = next;
    }
}

QByteArrayView JpegBand::start() const
{
    return file().first(m_startSize);
}

QByteArrayView JpegBand::headers() const
{
    return file().sliced(m_startSize, m_scanOffset - m_startSize);
}

QByteArrayView JpegBand::scan() const
{
    constexpr qsizetype kEndMarkerSize = 2;
    return file().sliced(m_scanOffset).chopped(kEndMarkerSize);
}

} // namespace hazelmark
