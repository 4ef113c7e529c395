#include "Guarded.h"
#include "JpegSegments.h"
#include "PictureEncoders.h"
#include "PixelRows.h"
#include "ZlibStream.h"

#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <vector>

#include <png.h>
#include <zlib.h>

namespace hazelmark {

namespace {

constexpr size_t kIdatSize = 256 * 1024;

struct PngChunk
{
    const char *type;
    QByteArray data;
};

/// IIM records in the text form that PNG readers agree on: a name, the length in decimal, and the bytes in hexadecimal,
/// 36 bytes a line.
QByteArray rawProfileText(const QByteArray &iptc)
{
    constexpr qsizetype kDigitsPerLine = 72;
    const QByteArray block = iptcResourceBlock(iptc);
    const QByteArray digits = block.toHex();
    QByteArray text = "\niptc\n" + QByteArray::number(block.size()).rightJustified(8) + '\n';
    for (qsizetype offset = 0; offset < digits.size(); offset += kDigitsPerLine)
        text += digits.mid(offset, kDigitsPerLine) + '\n';
    return text;
}

/// The bytes that `data` takes in the stream, with the cheapest search of the given kind.
qsizetype packedSize(const std::vector<uint8_t> &data, int strategy)
{
    constexpr int kLevel = 1;
    constexpr int kWindowBits = 15;
    constexpr int kMemoryLevel = 8;
    z_stream zlib = {};
    if (deflateInit2(&zlib, kLevel, Z_DEFLATED, kWindowBits, kMemoryLevel, strategy) != Z_OK)
        return 0;
    std::vector<uint8_t> packed(deflateBound(&zlib, uLong(data.size())));
    zlib.next_in = const_cast<uint8_t *>(data.data());
    zlib.avail_in = uInt(data.size());
    zlib.next_out = packed.data();
    zlib.avail_out = uInt(packed.size());
    deflate(&zlib, Z_FINISH);
    deflateEnd(&zlib);
    return qsizetype(zlib.total_out);
}

/// Whether the search for repeated byte strings pays, tried on a few groups of rows (each less the one above it).
bool repeatsItself(const QImage &pixels)
{
    constexpr int kGroups = 8;
    constexpr int kRowsPerGroup = 16;
    constexpr double kWorthwhile = 0.75;
    constexpr size_t kLongestRow = 16 * 1024 * 1024;
    const size_t rowBytes = size_t(packedRowSize(pixels));
    if (rowBytes > kLongestRow)
        return false;
    std::vector<uint8_t> above(rowBytes);
    std::vector<uint8_t> row(rowBytes);
    std::vector<uint8_t> differences;
    qsizetype withSearch = 0;
    qsizetype withRuns = 0;
    for (int group = 0; group < kGroups; ++group) {
        const int first = int(qint64(pixels.height()) * group / kGroups);
        const int end = std::min(first + kRowsPerGroup, pixels.height());
        readPackedRow(pixels, first, above.data());
        differences.clear();
        for (int y = first + 1; y < end; ++y) {
            readPackedRow(pixels, y, row.data());
            std::transform(row.begin(), row.end(), above.begin(), std::back_inserter(differences),
                           [](uint8_t here, uint8_t before) { return uint8_t(here - before); });
            row.swap(above);
        }
        withSearch += packedSize(differences, Z_DEFAULT_STRATEGY);
        withRuns += packedSize(differences, Z_RLE);
    }
    return double(withSearch) < kWorthwhile * double(withRuns);
}

/// Texts of Latin-1 in the old form, which every program reads; others in the form for UTF-8.
PngChunk textChunk(const PngText &text)
{
    const QByteArray latin1 = text.text.toLatin1();
    const bool isPlain = text.language.isEmpty() && text.translatedKeyword.isEmpty() &&
                         QString::fromLatin1(latin1) == text.text && !latin1.contains('\0');
    if (isPlain)
        return {"tEXt", text.keyword + '\0' + latin1};
    return {"iTXt", text.keyword + QByteArray(3, '\0') + text.language + '\0' + text.translatedKeyword.toUtf8() + '\0' +
                        text.text.toUtf8()};
}

/// The chunks are made here rather than by the library, which would refuse profiles that it finds fault with.
std::vector<PngChunk> metadataChunks(const MetadataBlocks &metadata)
{
    std::vector<PngChunk> chunks;
    const QByteArray kDeflateMethod(1, '\0');
    if (!metadata.iccProfile.isEmpty())
        chunks.push_back({"iCCP", QByteArray("ICC profile", 12) + kDeflateMethod + deflateZlib(metadata.iccProfile)});
    if (!metadata.exif.isEmpty())
        chunks.push_back({"eXIf", metadata.exif});
    if (!metadata.xmp.isEmpty()) {
        // Not compressed, no language, no translated keyword: as XMP asks.
        chunks.push_back({"iTXt", QByteArray("XML:com.adobe.xmp\0\0\0\0", 22) + metadata.xmp});
    }
    if (!metadata.iptc.isEmpty()) {
        chunks.push_back({"zTXt", QByteArray("Raw profile type iptc", 22) + kDeflateMethod +
                                      deflateZlib(rawProfileText(metadata.iptc))});
    }
    for (const PngText &text : metadata.texts)
        chunks.push_back(textChunk(text));
    return chunks;
}

} // namespace

bool isRegisteredKeyword(const QByteArray &keyword)
{
    static const QList<QByteArray> keywords{"Title",         "Author",   "Description", "Copyright",
                                            "Creation Time", "Software", "Disclaimer",  "Warning",
                                            "Source",        "Comment",  "Collection"};
    return keywords.contains(keyword);
}

namespace {

class PngWriter
{
public:
    explicit PngWriter(FileSink &sink);
    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }
    PngWriter(const PngWriter &) = delete;
    PngWriter &operator=(const PngWriter &) = delete;

    Outcome<Done> encode(const QImage &pixels, const EncodeOptions &options);

private:
    [[noreturn]] static void leave(png_structp png, png_const_charp message);
    static void write(png_structp png, png_bytep bytes, size_t count);
    static void doNotFlush(png_structp) {}

    void start(const QImage &pixels, const MetadataBlocks &metadata, bool isRepetitive);
    void setDensity(QSizeF dpi);
    void setCompression(bool isRepetitive);

    FileSink &m_sink;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    std::jmp_buf m_jump;
    char m_message[200] = {};
};

PngWriter::PngWriter(FileSink &sink)
    : m_sink(sink)
{
    m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    m_info = m_png ? png_create_info_struct(m_png) : nullptr;
    if (m_info)
        png_set_error_fn(m_png, this, &leave, [](png_structp, png_const_charp) {});
}

void PngWriter::leave(png_structp png, png_const_charp message)
{
    auto *self = static_cast<PngWriter *>(png_get_error_ptr(png));
    std::snprintf(self->m_message, sizeof self->m_message, "%s", message);
    std::longjmp(self->m_jump, 1);
}

void PngWriter::write(png_structp png, png_bytep bytes, size_t count)
{
    if (!static_cast<PngWriter *>(png_get_io_ptr(png))->m_sink.write(bytes, count))
        png_error(png, "write error");
}

Outcome<Done> PngWriter::encode(const QImage &pixels, const EncodeOptions &options)
{
    const std::vector<PngChunk> chunks = metadataChunks(options.metadata);
    const uchar *bits = pixels.constBits();
    const qsizetype stride = pixels.bytesPerLine();
    const int height = pixels.height();
    const bool isRepetitive = repeatsItself(pixels);
    const bool isWritten =
        m_info && runGuarded(m_jump, [&] {
            start(pixels, options.metadata, isRepetitive);
            for (const PngChunk &chunk : chunks) {
                png_write_chunk(m_png, reinterpret_cast<png_const_bytep>(chunk.type),
                                reinterpret_cast<png_const_bytep>(chunk.data.constData()), size_t(chunk.data.size()));
            }
            for (int y = 0; y < height; ++y)
                png_write_row(m_png, bits + y * stride);
            png_write_end(m_png, nullptr);
        });
    if (!isWritten)
        return m_sink.failure(QString::fromLatin1(m_message));
    return Done{};
}

void PngWriter::start(const QImage &pixels, const MetadataBlocks &metadata, bool isRepetitive)
{
    const bool hasAlpha = hasAlphaFormat(pixels);
    png_set_write_fn(m_png, this, &write, &doNotFlush);
    png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(m_png, m_info, png_uint_32(pixels.width()), png_uint_32(pixels.height()), is16Bit(pixels) ? 16 : 8,
                 hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (metadata.dpi)
        setDensity(*metadata.dpi);
    setCompression(isRepetitive);
    png_write_info(m_png, m_info);
    // The rows' filler is dropped and their samples are put in the file's byte order on the way.
    if (!hasAlpha)
        png_set_filler(m_png, 0, PNG_FILLER_AFTER);
    if (is16Bit(pixels) && Q_BYTE_ORDER == Q_LITTLE_ENDIAN)
        png_set_swap(m_png);
}

/// A photo has next to no repeated byte strings: with runs alone it takes a fifth of the time of the usual level 6, and
/// no more room. What does repeat itself (a screenshot) is far smaller with the search for strings, and quick to
/// search.
void PngWriter::setCompression(bool isRepetitive)
{
    constexpr int kLevelWithSearch = 6;
    constexpr int kLevelOfRuns = 1;
    png_set_compression_level(m_png, isRepetitive ? kLevelWithSearch : kLevelOfRuns);
    png_set_compression_strategy(m_png, isRepetitive ? Z_DEFAULT_STRATEGY : Z_RLE);
    png_set_compression_buffer_size(m_png, kIdatSize);
    png_set_filter(m_png, PNG_FILTER_TYPE_BASE,
                   isRepetitive ? PNG_ALL_FILTERS : PNG_FILTER_SUB | PNG_FILTER_UP | PNG_FILTER_AVG | PNG_FILTER_PAETH);
}

void PngWriter::setDensity(QSizeF dpi)
{
    const double x = std::round(dpi.width() / kMetresPerInch);
    const double y = std::round(dpi.height() / kMetresPerInch);
    if (x >= 1 && x <= PNG_UINT_31_MAX && y >= 1 && y <= PNG_UINT_31_MAX)
        png_set_pHYs(m_png, m_info, png_uint_32(x), png_uint_32(y), PNG_RESOLUTION_METER);
}

} // namespace

Outcome<Done> encodePng(const QImage &pixels, const EncodeOptions &options, FileSink &sink)
{
    return PngWriter(sink).encode(pixels, options);
}

} // namespace hazelmark
