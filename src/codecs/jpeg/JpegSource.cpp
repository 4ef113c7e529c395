#include "JpegSource.h"

#include <algorithm>

namespace hazelmark {

namespace {

constexpr qint64 kBufferSize = 256 * 1024;

/// Bytes left over before a marker that are not taken for damage: several camera makers' encoders leave a few there.
constexpr int kHarmlessLeftOver = 16;

/// A colour profile takes up to 16 MB of segments; all other segments are skipped.
constexpr qint64 kMaxHeaderSize = 32 * 1024 * 1024;

/// The library's list of saved segments takes a time that grows with the square of their number.
constexpr int kMaxMarkers = 10000;

[[noreturn]] void leave(j_common_ptr lib)
{
    auto *errors = static_cast<JpegErrors *>(lib->client_data);
    lib->err->format_message(lib, errors->message);
    std::longjmp(errors->jump, 1);
}

/// Whether the marker has a place between the data of one scan and the next.
bool mayFollowScan(int marker)
{
    constexpr int kNumberOfLines = 0xdc;
    constexpr int kTables[] = {0xc4, 0xcc, 0xda, 0xdb, kNumberOfLines, 0xdd, 0xfe}; // DHT, DAC, SOS, DQT, DRI, COM
    return (marker >= JPEG_RST0 && marker <= JPEG_EOI && marker != 0xd8) || (marker >= JPEG_APP0 && marker < 0xf0) ||
           std::find(std::begin(kTables), std::end(kTables), marker) != std::end(kTables);
}

/// The data of a scan has come to an end before its last block.
void takeMissingData(j_decompress_ptr lib, JpegErrors &errors)
{
    const bool isEnd = lib->unread_marker == JPEG_EOI;
    const JDIMENSION missingRows = lib->total_iMCU_rows - 1 - std::min(lib->input_iMCU_row, lib->total_iMCU_rows - 1);
    // Behind damage the data does not end where it should; an end without damage before it is the end of what there is.
    errors.isCutOff = errors.input->hasEnded() || (isEnd && !errors.isDamaged && missingRows > 0);
    if (errors.isCutOff)
        leave(reinterpret_cast<j_common_ptr>(lib));
    errors.isDamaged = true;
    if (!mayFollowScan(lib->unread_marker))
        lib->unread_marker = 0; // a part of the damage; the library goes on at the next marker
}

void warnOrLeave(j_common_ptr lib, int level)
{
    constexpr int kMarkerTrace = 1;
    auto *errors = static_cast<JpegErrors *>(lib->client_data);
    if (level == kMarkerTrace && errors->input->isInHeader() && ++errors->markerCount > kMaxMarkers)
        refuseJpeg(lib, "its header has too many segments");
    if (level >= 0)
        return; // a trace message
    ++errors->manager.num_warnings;
    auto *decompress = reinterpret_cast<j_decompress_ptr>(lib);
    switch (errors->manager.msg_code) {
    case JWRN_EXTRANEOUS_DATA: {
        // Filler in place of an end marker is what a file that was not written to its end often holds.
        const int leftOver = errors->manager.msg_parm.i[0];
        if (decompress->input_scan_number > 0 && leftOver > kHarmlessLeftOver &&
            (errors->input->hasEnded() || !errors->input->isFillerBehind(leftOver)))
            errors->isDamaged = true;
        return;
    }
    case JWRN_HIT_MARKER:
    case JWRN_MUST_RESYNC:
        takeMissingData(decompress, *errors);
        return;
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_BOGUS_PROGRESSION:
        errors->isDamaged = true;
        return;
    default:
        return;
    }
}

void ignoreMessage(j_common_ptr) {}

void ignoreSource(j_decompress_ptr) {}

} // namespace

void refuseJpeg(j_common_ptr lib, const char *message)
{
    auto *errors = static_cast<JpegErrors *>(lib->client_data);
    lib->err->msg_code = JMSG_NOMESSAGE;
    qstrncpy(errors->message, message, sizeof errors->message);
    std::longjmp(errors->jump, 1);
}

JpegErrors::JpegErrors(SourceFile &sourceFile)
    : source(sourceFile)
{
    jpeg_std_error(&manager);
    manager.error_exit = &leave;
    manager.emit_message = &warnOrLeave;
    manager.output_message = &ignoreMessage;
}

Failure JpegErrors::failure() const
{
    using Reason = Failure::Reason;
    Reason reason = Reason::Damaged;
    switch (manager.msg_code) {
    case JERR_IMAGE_TOO_BIG:
        reason = Reason::TooLarge;
        break;
    case JERR_OUT_OF_MEMORY:
        reason = Reason::OutOfMemory;
        break;
    case JERR_BAD_PRECISION:
    case JERR_SOF_UNSUPPORTED:
    case JERR_ARITH_NOTIMPL:
    case JERR_CCIR601_NOTIMPL:
    case JERR_COMPONENT_COUNT:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
    case JERR_NOTIMPL:
        reason = Reason::UnsupportedFormat;
        break;
    default:
        if (input && input->hasReadError())
            reason = Reason::NotReadable;
        else if (isCutOff || (input && input->hasEnded()))
            reason = Reason::Truncated;
    }
    return source.failure(reason, QString::fromLatin1(message));
}

JpegSource::JpegSource(SourceFile &source, JpegErrors &errors)
    : m_source(source)
    , m_buffer(kBufferSize)
{
    errors.input = this;
    m_manager.init_source = &ignoreSource;
    m_manager.fill_input_buffer = &fill;
    m_manager.skip_input_data = &skip;
    m_manager.resync_to_restart = &jpeg_resync_to_restart;
    m_manager.term_source = &ignoreSource;
}

boolean JpegSource::fill(j_decompress_ptr lib)
{
    JpegSource *self = static_cast<JpegErrors *>(lib->client_data)->input;
    qint64 count = self->m_source.read(self->m_position, reinterpret_cast<char *>(self->m_buffer.data()), kBufferSize);
    if (count < 0) {
        self->m_hasReadError = true;
        ERREXIT(lib, JERR_FILE_READ);
    }
    self->m_position += count;
    if (count == 0) {
        self->m_hasEnded = true;
        self->m_buffer[0] = 0xff;
        self->m_buffer[1] = JPEG_EOI;
        count = 2;
    }
    self->m_headerSize += count;
    if (self->m_isInHeader && self->m_headerSize > kMaxHeaderSize)
        refuseJpeg(reinterpret_cast<j_common_ptr>(lib), "its header is too long");
    self->m_manager.next_input_byte = self->m_buffer.data();
    self->m_manager.bytes_in_buffer = size_t(count);
    return TRUE;
}

void JpegSource::skip(j_decompress_ptr lib, long count)
{
    JpegSource *self = static_cast<JpegErrors *>(lib->client_data)->input;
    if (count <= 0)
        return;
    self->m_headerSize -= std::min(qint64(count), qint64(self->m_manager.bytes_in_buffer));
    if (size_t(count) <= self->m_manager.bytes_in_buffer) {
        self->m_manager.next_input_byte += count;
        self->m_manager.bytes_in_buffer -= size_t(count);
        return;
    }
    self->m_position += count - qint64(self->m_manager.bytes_in_buffer);
    self->m_manager.bytes_in_buffer = 0;
}

bool JpegSource::isFillerBehind(int count) const
{
    const qint64 end = m_position - qint64(m_manager.bytes_in_buffer);
    bool isFiller = true;
    for (qint64 at = end - count; isFiller && at < end; at += kBufferSize) { // the whole could be gigabytes
        const QByteArray bytes = m_source.bytesAt(at, std::min(kBufferSize, end - at));
        isFiller = !bytes.isEmpty() &&
                   std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0 || byte == char(0xff); });
    }
    return isFiller;
}

} // namespace hazelmark
