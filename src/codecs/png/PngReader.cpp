#include "DecodeScope.h"
#include "Guarded.h"
#include "LargeMemory.h"
#include "PictureFormat.h"
#include "SourceCursor.h"
#include "ZlibStream.h"

#include <QtEndian>

#include <cstdio>

#include <png.h>

namespace hazelmark {

namespace {

/// Chunks that the library must not unpack: texts are of no use here (and may be bombs), and the colour profile is
/// wanted byte for byte, even one that the library would find fault with.
constexpr png_byte kRawChunks[] = "iCCP\0tEXt\0zTXt\0iTXt\0eXIf\0sPLT\0hIST";
constexpr int kRawChunkCount = 7;

/// Reads of the library before the picture data: each chunk takes three, and one a kilobyte where it is passed over.
constexpr int kMaxHeaderReads = 64 * 1024;

class PngReader : public PictureReader
{
public:
    explicit PngReader(SourceFile &source)
        : m_source(source)
    {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        m_info = m_png ? png_create_info_struct(m_png) : nullptr;
        if (m_info)
            png_set_error_fn(m_png, this, &leave, &ignoreWarning);
    }
    ~PngReader() override { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReader(const PngReader &) = delete;
    PngReader &operator=(const PngReader &) = delete;

    std::optional<Failure> readHeader() override;
    PictureInfo info() override;
    DecodeCost cost(QSize) override;
    Outcome<Picture> decode(QSize) override;

private:
    [[noreturn]] static void leave(png_structp png, png_const_charp message);
    static void ignoreWarning(png_structp, png_const_charp) {}
    static void read(png_structp png, png_bytep bytes, size_t count);
    Failure failure() const { return m_source.failure(m_reason, QString::fromLatin1(m_message)); }

    bool isGray() const { return !(m_colorType & PNG_COLOR_MASK_COLOR); }
    bool hasAlpha() const
    {
        return (m_colorType & PNG_COLOR_MASK_ALPHA) || png_get_valid(m_png, m_info, PNG_INFO_tRNS);
    }
    QByteArray iccProfile() const;
    QImage::Format outputFormat() const;
    int requestOutputFormat();

    SourceFile &m_source;
    SourceCursor m_cursor{m_source};
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    std::jmp_buf m_jump;
    Failure::Reason m_reason = Failure::Reason::Damaged;
    char m_message[200] = {};
    png_uint_32 m_width = 0;
    png_uint_32 m_height = 0;
    int m_bitDepth = 0;
    int m_colorType = 0;
    int m_headerReads = 0;
    bool m_isInHeader = true;
};

void PngReader::leave(png_structp png, png_const_charp message)
{
    auto *self = static_cast<PngReader *>(png_get_error_ptr(png));
    std::snprintf(self->m_message, sizeof self->m_message, "%s", message);
    std::longjmp(self->m_jump, 1);
}

void PngReader::read(png_structp png, png_bytep bytes, size_t count)
{
    auto *self = static_cast<PngReader *>(png_get_io_ptr(png));
    if (self->m_isInHeader && ++self->m_headerReads > kMaxHeaderReads)
        png_error(png, "its header is too long");
    const qint64 got = self->m_cursor.read(reinterpret_cast<char *>(bytes), qint64(count));
    if (got == qint64(count))
        return;
    self->m_reason = got < 0 ? Failure::Reason::NotReadable : Failure::Reason::Truncated;
    png_error(png, "the file ends too early");
}

std::optional<Failure> PngReader::readHeader()
{
    if (!m_info)
        return m_source.failure(Failure::Reason::OutOfMemory);
    const bool isRead = runGuarded(m_jump, [this] {
        png_set_read_fn(m_png, this, &read);
        png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, kRawChunks, kRawChunkCount);
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_ALWAYS, kRawChunks, 1);
        png_read_info(m_png, m_info);
        png_get_IHDR(m_png, m_info, &m_width, &m_height, &m_bitDepth, &m_colorType, nullptr, nullptr, nullptr);
    });
    if (!isRead)
        return failure();
    m_isInHeader = false;
    return m_source.checkSize(m_width, m_height);
}

/// The chunk holds a name, a zero, the compression method (always 0) and the profile as a zlib stream.
QByteArray PngReader::iccProfile() const
{
    constexpr qsizetype kMaxNameLength = 79;
    png_unknown_chunkp chunks = nullptr;
    const int count = png_get_unknown_chunks(m_png, m_info, &chunks);
    for (int index = 0; index < count; ++index) {
        if (qstrncmp(reinterpret_cast<const char *>(chunks[index].name), "iCCP", 4) != 0)
            continue;
        const auto data =
            QByteArray::fromRawData(reinterpret_cast<const char *>(chunks[index].data), qsizetype(chunks[index].size));
        const qsizetype nameEnd = data.indexOf('\0');
        if (nameEnd >= 0 && nameEnd <= kMaxNameLength && nameEnd + 2 < data.size())
            return inflateZlib(data.mid(nameEnd + 2), kMaxIccProfileSize);
    }
    return {};
}

PictureInfo PngReader::info()
{
    PictureInfo info;
    info.format = "png";
    info.frames = {QSize(int(m_width), int(m_height))};
    info.colorModel = isGray() ? ColorModel::Gray : ColorModel::Rgb;
    info.bitsPerChannel = m_colorType == PNG_COLOR_TYPE_PALETTE ? 8 : m_bitDepth;
    info.hasAlpha = hasAlpha();
    info.iccProfile = iccProfile();
    png_uint_32 perMetreX = 0;
    png_uint_32 perMetreY = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(m_png, m_info, &perMetreX, &perMetreY, &unit) && unit == PNG_RESOLUTION_METER && perMetreX > 0 &&
        perMetreY > 0)
        info.dpi = QSizeF(perMetreX, perMetreY) * kMetresPerInch;
    return info;
}

QImage::Format PngReader::outputFormat() const
{
    return bitmapFormat(isGray() ? ColorModel::Gray : ColorModel::Rgb, hasAlpha(), m_bitDepth == 16);
}

/// How often every row is to be read until it is whole.
int PngReader::requestOutputFormat()
{
    constexpr png_uint_32 kOpaque = 0xffff;
    png_set_expand(m_png); // palette to RGB, grey to at least 8 bits, tRNS to alpha
    if (m_bitDepth == 16 && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
        png_set_swap(m_png);
    if (isGray() && hasAlpha())
        png_set_gray_to_rgb(m_png);
    if (!isGray() && !hasAlpha())
        png_set_filler(m_png, kOpaque, PNG_FILLER_AFTER);
    const int passes = png_set_interlace_handling(m_png);
    png_read_update_info(m_png, m_info);
    return passes;
}

DecodeCost PngReader::cost(QSize)
{
    return {qint64(m_width) * m_height * QImage::toPixelFormat(outputFormat()).bitsPerPixel() / 8};
}

Outcome<Picture> PngReader::decode(QSize)
{
    Picture picture;
    picture.fileColorModel = isGray() ? ColorModel::Gray : ColorModel::Rgb;
    picture.iccProfile = iccProfile();
    picture.pixels = makeLargeBitmap(QSize(int(m_width), int(m_height)), outputFormat());
    if (picture.pixels.isNull())
        return m_source.failure(Failure::Reason::OutOfMemory);
    int passes = 1;
    if (!runGuarded(m_jump, [&] { passes = requestOutputFormat(); }))
        return failure();
    const size_t rowBytes = png_get_rowbytes(m_png, m_info);
    if (rowBytes > size_t(picture.pixels.bytesPerLine()))
        return m_source.failure(Failure::Reason::UnsupportedFormat);

    uchar *bits = picture.pixels.bits();
    const qsizetype stride = picture.pixels.bytesPerLine();
    const bool isRead = runGuarded(m_jump, [&] {
        for (int pass = 0; pass < passes; ++pass) {
            for (png_uint_32 y = 0; y < m_height; ++y) {
                png_read_row(m_png, bits + qsizetype(y) * stride, nullptr);
                DecodeScope::tellProgress((pass + (y + 1.0) / m_height) / passes);
            }
        }
        png_read_end(m_png, nullptr); // the check sums behind the last row
    });
    if (!isRead)
        return failure();
    return picture;
}

bool isPng(const QByteArray &head)
{
    return head.startsWith("\x89PNG\r\n\x1a\n");
}

} // namespace

const PictureFormat kPngFormat = formatReadBy<PngReader>(isPng);

} // namespace hazelmark
