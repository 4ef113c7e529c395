#include "DecodeScope.h"
#include "LargeMemory.h"
#include "PictureFormat.h"
#include "PixelRows.h"
#include "TiffCursor.h"
#include "TiffHandle.h"
#include "TiffLayout.h"
#include "TiffSamples.h"
#include "ToSrgb.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <functional>
#include <set>

namespace hazelmark {

namespace {

/// A page of a TIFF file as far as its directory's own bytes tell.
struct Page
{
    quint64 offset; ///< of the directory in the file
    quint64 width;
    quint64 height;
    bool isReducedOrMask;

    bool isPicture() const
    {
        return !isReducedOrMask && width > 0 && height > 0 && width <= INT_MAX && height <= INT_MAX;
    }
};

/// In the order of the chain of directories, no more than kMaxFrames. A chain that leads back into itself or out of the
/// file ends there. Not through the library, which fetches every value of every directory on its way: pages that share
/// one large value would make a small file take hours.
std::vector<Page> pagesOf(const SourceFile &source)
{
    qint64 entriesLeft = 250'000; // of all directories: some twenty a page in files that have many pages
    std::vector<Page> pages;
    std::set<quint64> seen;
    const auto cursor = TiffCursor::of(source);
    quint64 next = cursor ? cursor->firstDirectoryOffset() : 0;
    while (next != 0 && pages.size() < kMaxFrames && seen.insert(next).second) {
        const auto directory = cursor->directoryAt(next, entriesLeft);
        if (!directory || directory->entries.empty())
            break;
        const auto number = [&](uint32_t tag) {
            const TiffEntry *entry = directory->find(quint16(tag));
            return entry ? cursor->number(*entry).value_or(0) : 0;
        };
        pages.push_back({next, number(TIFFTAG_IMAGEWIDTH), number(TIFFTAG_IMAGELENGTH),
                         (number(TIFFTAG_SUBFILETYPE) & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0 ||
                             number(TIFFTAG_OSUBFILETYPE) == OFILETYPE_REDUCEDIMAGE});
        entriesLeft -= qint64(directory->entries.size());
        next = directory->next;
    }
    return pages;
}

class TiffReader : public PictureReader
{
public:
    explicit TiffReader(SourceFile &source)
        : m_source(source)
        , m_pages(pagesOf(source))
        , m_tiff(source)
    {
    }

    /// Goes to the first page that is neither a reduced-resolution copy nor a mask.
    std::optional<Failure> readHeader() override;
    PictureInfo info() override;
    DecodeCost cost(QSize) override;
    Outcome<Picture> decode(QSize) override;

private:
    Failure failure() const;
    QByteArray iccProfile() const;
    std::optional<QSizeF> dpi() const;

    bool readThroughLibrary();
    bool readSamples();
    bool readStrips();
    double unpackedSize() const;
    bool isWanted(int plane) const;
    bool readTiles();
    void place(const uint8_t *packed, int plane, int x, int y, int count);
    template <typename Sample>
    void placeSamples(const uint8_t *packed, int plane, Sample *row, int count);
    template <typename Sample>
    bool finishRows();
    template <typename Sample>
    void finishGray(Sample *row) const;
    template <typename Sample>
    void finishAlpha(Sample *row) const;
    template <typename Sample>
    bool finishInk();
    template <typename Sample>
    bool finishLab();
    bool applyPalette();
    /// Samples a pixel in the bitmap.
    int pixelStep() const { return m_picture.pixels.depth() / (m_layout.isDeep() ? 16 : 8); }
    template <typename Sample>
    Sample *rowAt(int y) const
    {
        return reinterpret_cast<Sample *>(m_bits + y * m_stride);
    }

    SourceFile &m_source;
    std::vector<Page> m_pages;
    TiffHandle m_tiff;
    TiffLayout m_layout;
    Picture m_picture;
    uchar *m_bits = nullptr;
    qsizetype m_stride = 0;
};

Failure TiffReader::failure() const
{
    const auto reason = m_tiff.hasHitEnd() ? Failure::Reason::Truncated : Failure::Reason::Damaged;
    return m_source.failure(reason, m_tiff.message());
}

std::optional<Failure> TiffReader::readHeader()
{
    if (!m_tiff.get())
        return failure();
    // Camera raw files are TIFF files whose first page is a small preview: not what the photo's owner means.
    const bool isFirstReduced = !m_pages.empty() && m_pages.front().isReducedOrMask;
    uint16_t subPages = 0;
    const void *offsets = nullptr;
    if (isFirstReduced && TIFFGetField(m_tiff.get(), TIFFTAG_SUBIFD, &subPages, &offsets) == 1)
        return m_source.failure(Failure::Reason::UnsupportedFormat, QStringLiteral("camera raw data"));
    // Where there is nothing but copies, the first one is the picture.
    const auto picture = std::find_if(m_pages.begin(), m_pages.end(), std::mem_fn(&Page::isPicture));
    if (isFirstReduced && picture != m_pages.end() && !TIFFSetSubDirectory(m_tiff.get(), picture->offset))
        return failure();
    m_layout = TiffLayout::of(m_tiff.get());
    m_tiff.clearError();
    m_tiff.endHeader();
    return m_source.checkSize(m_layout.width, m_layout.height);
}

QByteArray TiffReader::iccProfile() const
{
    uint32_t size = 0;
    const void *bytes = nullptr;
    if (!TIFFGetField(m_tiff.get(), TIFFTAG_ICCPROFILE, &size, &bytes) || !bytes)
        return {};
    return QByteArray(static_cast<const char *>(bytes), qsizetype(size));
}

std::optional<QSizeF> TiffReader::dpi() const
{
    float x = 0;
    float y = 0;
    uint16_t unit = RESUNIT_INCH;
    if (!TIFFGetField(m_tiff.get(), TIFFTAG_XRESOLUTION, &x) || !TIFFGetField(m_tiff.get(), TIFFTAG_YRESOLUTION, &y))
        return std::nullopt;
    TIFFGetFieldDefaulted(m_tiff.get(), TIFFTAG_RESOLUTIONUNIT, &unit);
    if (!(x > 0 && y > 0) || (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER))
        return std::nullopt;
    return QSizeF(double(x), double(y)) * (unit == RESUNIT_INCH ? 1.0 : kCentimetresPerInch);
}

PictureInfo TiffReader::info()
{
    PictureInfo info;
    info.format = "tiff";
    info.frames = {QSize(int(m_layout.width), int(m_layout.height))};
    info.colorModel = m_layout.colorModel();
    info.bitsPerChannel = m_layout.photometric == PHOTOMETRIC_PALETTE ? 8 : m_layout.bitsPerSample;
    info.hasAlpha = m_layout.hasAlpha();
    info.iccProfile = iccProfile();
    info.dpi = dpi();
    const uint64_t first = TIFFCurrentDirOffset(m_tiff.get());
    for (const Page &page : m_pages) {
        if (page.offset != first && page.isPicture())
            info.frames.emplace_back(int(page.width), int(page.height));
    }
    return info;
}

/// One strip or tile as stored and unpacked, and the places of all of them.
DecodeCost TiffReader::cost(QSize)
{
    TIFF *tiff = m_tiff.get();
    const int bits = QImage::toPixelFormat(m_layout.pixelFormat()).bitsPerPixel();
    const bool isByRows = !m_layout.isTiled && !m_layout.needsLibraryConversion();
    const tmsize_t piece = m_layout.isTiled ? TIFFTileSize(tiff)
                           : isByRows       ? TIFFScanlineSize(tiff)
                                            : TIFFStripSize(tiff);
    const uint32_t pieces = m_layout.isTiled ? TIFFNumberOfTiles(tiff) : TIFFNumberOfStrips(tiff);
    return {qint64(m_layout.width) * m_layout.height * bits / 8, 2 * piece + qint64(pieces) * 2 * 8};
}

Outcome<Picture> TiffReader::decode(QSize)
{
    if (!m_layout.needsLibraryConversion() && !m_layout.isReadable())
        return m_source.failure(Failure::Reason::UnsupportedFormat, QStringLiteral("this kind of TIFF"));
    if (m_tiff.hasLostProfile())
        return m_source.failure(Failure::Reason::Truncated, QStringLiteral("its colour profile is missing"));
    // The JBIG library ends the program where a hostile header makes it ask for too much memory.
    if (m_layout.compression == COMPRESSION_JBIG || !TIFFIsCODECConfigured(m_layout.compression))
        return m_source.failure(Failure::Reason::UnsupportedFormat, QStringLiteral("its compression"));
    constexpr double kAlwaysAllowed = 1 << 30;
    if (unpackedSize() > std::max(kAlwaysAllowed, 16.0 * double(cost({}).bitmap)))
        return m_source.failure(Failure::Reason::Damaged, QStringLiteral("it unpacks to far more than the picture"));
    m_picture.fileColorModel = m_layout.colorModel();
    m_picture.iccProfile = iccProfile();
    m_picture.pixels = makeLargeBitmap(QSize(int(m_layout.width), int(m_layout.height)), m_layout.pixelFormat());
    if (m_picture.pixels.isNull())
        return m_source.failure(Failure::Reason::OutOfMemory);
    m_bits = m_picture.pixels.bits();
    m_stride = m_picture.pixels.bytesPerLine();
    const bool isRead = m_layout.needsLibraryConversion() ? readThroughLibrary() : readSamples();
    if (!isRead || m_tiff.hasError())
        return failure();
    return m_picture;
}

/// The library's conversion applies the orientation tag unless it is told that the tag's is the wanted one.
bool TiffReader::readThroughLibrary()
{
    constexpr int kStopOnError = 1;
    TIFFRGBAImage image;
    char message[1024] = {};
    if (!TIFFRGBAImageBegin(&image, m_tiff.get(), kStopOnError, message))
        return false;
    image.req_orientation = image.orientation;
    const bool isRead = TIFFRGBAImageGet(&image, rowAt<uint32_t>(0), m_layout.width, m_layout.height) != 0;
    TIFFRGBAImageEnd(&image);
    if (!isRead)
        return false;
    for (uint32_t y = 0; y < m_layout.height; ++y) {
        uint32_t *row = rowAt<uint32_t>(int(y));
        std::transform(row, row + m_layout.width, row, [](uint32_t pixel) { return qToLittleEndian(pixel); });
    }
    return true;
}

bool TiffReader::readSamples()
{
    // Chroma comes back upsampled and converted.
    if (m_layout.compression == COMPRESSION_JPEG && m_layout.photometric == PHOTOMETRIC_YCBCR)
        TIFFSetField(m_tiff.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    if (!(m_layout.isTiled ? readTiles() : readStrips()))
        return false;
    return m_layout.isDeep() ? finishRows<uint16_t>() : finishRows<uint8_t>();
}

/// Whether anything of the samples that are stored in this plane (or beside each other) goes into the bitmap.
bool TiffReader::isWanted(int plane) const
{
    return !m_layout.isPlanar || plane < m_layout.colorSamples() ||
           (m_layout.hasAlpha() && plane == m_layout.alphaSample);
}

/// Bytes of all rows or tiles that are read. A row of samples that nobody asks for, or a tile that is far larger than
/// the picture, is only there to take time and memory. (No whole number: a hostile header may state any sizes.)
double TiffReader::unpackedSize() const
{
    TIFF *tiff = m_tiff.get();
    const double planes = m_layout.isPlanar ? m_layout.colorSamples() + 1 : 1;
    if (!m_layout.isTiled)
        return planes * double(TIFFScanlineSize(tiff)) * m_layout.height;
    const double tiles = double(TIFFNumberOfTiles(tiff)) / (m_layout.isPlanar ? m_layout.samplesPerPixel : 1);
    return planes * double(TIFFTileSize(tiff)) * tiles;
}

bool TiffReader::readStrips()
{
    const int planes = m_layout.isPlanar ? m_layout.samplesPerPixel : 1;
    const int64_t samplesPerRow = int64_t(m_layout.width) * (m_layout.isPlanar ? 1 : m_layout.samplesPerPixel);
    const tmsize_t rowSize = TIFFScanlineSize(m_tiff.get());
    if (rowSize <= 0 || rowSize < (samplesPerRow * m_layout.bitsPerSample + 7) / 8)
        return false;
    std::vector<uint8_t> row(static_cast<size_t>(rowSize));
    for (int plane = 0; plane < planes; ++plane) {
        for (uint32_t y = 0; isWanted(plane) && y < m_layout.height; ++y) {
            if (TIFFReadScanline(m_tiff.get(), row.data(), y, uint16_t(plane)) != 1 || m_tiff.hasError())
                return false;
            place(row.data(), plane, 0, int(y), int(m_layout.width));
            DecodeScope::tellProgress((plane + (y + 1.0) / m_layout.height) / planes);
        }
    }
    return true;
}

bool TiffReader::readTiles()
{
    uint32_t tileWidth = 0;
    uint32_t tileHeight = 0;
    TIFFGetField(m_tiff.get(), TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(m_tiff.get(), TIFFTAG_TILELENGTH, &tileHeight);
    const tmsize_t tileSize = TIFFTileSize(m_tiff.get());
    const tmsize_t rowSize = TIFFTileRowSize(m_tiff.get());
    const int64_t samplesPerRow = int64_t(tileWidth) * (m_layout.isPlanar ? 1 : m_layout.samplesPerPixel);
    if (tileWidth == 0 || tileHeight == 0 || rowSize < (samplesPerRow * m_layout.bitsPerSample + 7) / 8 ||
        tileSize / tileHeight < rowSize)
        return false;
    std::vector<uint8_t> tile(static_cast<size_t>(tileSize));
    const int planes = m_layout.isPlanar ? m_layout.samplesPerPixel : 1;
    for (int plane = 0; plane < planes; ++plane) {
        for (int64_t y = 0; isWanted(plane) && y < m_layout.height; y += tileHeight) {
            for (int64_t x = 0; x < m_layout.width; x += tileWidth) {
                if (TIFFReadTile(m_tiff.get(), tile.data(), uint32_t(x), uint32_t(y), 0, uint16_t(plane)) != tileSize ||
                    m_tiff.hasError())
                    return false;
                const int64_t rows = std::min<int64_t>(tileHeight, m_layout.height - y);
                const int64_t columns = std::min<int64_t>(tileWidth, m_layout.width - x);
                for (int64_t row = 0; row < rows; ++row)
                    place(tile.data() + row * rowSize, plane, int(x), int(y + row), int(columns));
            }
            DecodeScope::tellProgress(
                (plane + double(std::min<int64_t>(y + tileHeight, m_layout.height)) / m_layout.height) / planes);
        }
    }
    return true;
}

/// Puts `count` pixels that begin at (x, y) into the bitmap, as the file stores them.
void TiffReader::place(const uint8_t *packed, int plane, int x, int y, int count)
{
    if (m_layout.isDeep())
        placeSamples(packed, plane, rowAt<uint16_t>(y) + qsizetype(x) * pixelStep(), count);
    else
        placeSamples(packed, plane, rowAt<uint8_t>(y) + qsizetype(x) * pixelStep(), count);
}

template <typename Sample>
void TiffReader::placeSamples(const uint8_t *packed, int plane, Sample *row, int count)
{
    const bool isPalette = m_layout.photometric == PHOTOMETRIC_PALETTE;
    const TiffSamples samples(m_layout.bitsPerSample, m_layout.sampleFormat == SAMPLEFORMAT_IEEEFP,
                              isPalette ? TiffSamples::Scaling::None : TiffSamples::Scaling::ToFullRange);
    const int step = m_layout.isPlanar ? 1 : m_layout.samplesPerPixel;
    const auto placeOne = [&](int sample, int slot) {
        if (!m_layout.isPlanar || sample == plane)
            samples.unpack(packed, m_layout.isPlanar ? 0 : sample, step, row + slot, pixelStep(), count);
    };
    for (int sample = 0; sample < m_layout.colorSamples(); ++sample)
        placeOne(sample, sample);
    if (m_layout.hasAlpha())
        placeOne(m_layout.alphaSample, 3);
}

/// Turns the samples as stored into the bitmap's colours, in place.
template <typename Sample>
bool TiffReader::finishRows()
{
    if (m_layout.photometric == PHOTOMETRIC_PALETTE)
        return applyPalette();
    m_picture.convertedToSrgb =
        m_picture.fileColorModel == ColorModel::Cmyk || m_picture.fileColorModel == ColorModel::Lab;
    if (m_picture.convertedToSrgb) {
        const bool isConverted =
            m_picture.fileColorModel == ColorModel::Cmyk ? finishInk<Sample>() : finishLab<Sample>();
        m_picture.iccProfile.clear();
        return isConverted;
    }
    for (int y = 0; y < int(m_layout.height); ++y) {
        Sample *row = rowAt<Sample>(y);
        if (m_picture.fileColorModel == ColorModel::Gray)
            finishGray(row);
        if (m_layout.hasAlpha())
            finishAlpha(row);
        else if (pixelStep() == 4) {
            for (uint32_t x = 0; x < m_layout.width; ++x)
                row[4 * size_t(x) + 3] = Sample(~Sample(0));
        }
    }
    return true;
}

template <typename Sample>
void TiffReader::finishGray(Sample *row) const
{
    const size_t step = size_t(pixelStep());
    for (size_t i = 0; i < m_layout.width * step; i += step) {
        if (m_layout.photometric == PHOTOMETRIC_MINISWHITE)
            row[i] = Sample(~row[i]);
        if (step == 4)
            row[i + 1] = row[i + 2] = row[i];
    }
}

/// Colours that were multiplied by alpha are divided by it again; a transparent pixel's stay as stored.
template <typename Sample>
void TiffReader::finishAlpha(Sample *row) const
{
    constexpr uint64_t kMax = Sample(~Sample(0));
    if (m_layout.alpha != TiffLayout::Alpha::Associated)
        return;
    for (uint32_t x = 0; x < m_layout.width; ++x, row += 4) {
        const uint64_t alpha = row[3];
        if (alpha == 0 || alpha == kMax)
            continue;
        for (int channel = 0; channel < 3; ++channel)
            row[channel] = Sample(std::min(kMax, (row[channel] * kMax + alpha / 2) / alpha));
    }
}

template <typename Sample>
bool TiffReader::finishInk()
{
    const ToSrgb converter = ToSrgb::fromCmyk(m_picture.iccProfile);
    std::vector<Sample> cmyk(size_t(m_layout.width) * 4);
    for (int y = 0; y < int(m_layout.height); ++y) {
        Sample *row = rowAt<Sample>(y);
        std::copy(row, row + cmyk.size(), cmyk.data());
        converter.convertRow(cmyk.data(), row, int(m_layout.width));
    }
    return true;
}

/// The 8- and 16-bit encodings of both photometric interpretations, brought to the converter's.
template <typename Sample>
bool TiffReader::finishLab()
{
    const ToSrgb converter = ToSrgb::fromLab();
    if (!converter.isValid())
        return false;
    constexpr bool is8Bit = sizeof(Sample) == 1;
    const bool isSigned = m_layout.photometric == PHOTOMETRIC_CIELAB; // a and b; else they are offset by a half
    const auto scaled = [](uint32_t value) { return uint16_t(std::min<uint32_t>(65535, value * 257 / 256)); };
    std::vector<uint16_t> lab(size_t(m_layout.width) * 3);
    for (int y = 0; y < int(m_layout.height); ++y) {
        Sample *row = rowAt<Sample>(y);
        for (size_t x = 0; x < m_layout.width; ++x) {
            for (size_t i = 0; i < 3; ++i) {
                constexpr uint32_t kHalf = is8Bit ? 0x80 : 0x8000;
                const uint32_t value = row[4 * x + i] ^ (isSigned && i > 0 ? kHalf : 0);
                const bool isFullRange = is8Bit || (isSigned && i == 0);
                lab[3 * x + i] = is8Bit ? uint16_t(value * 257) : isFullRange ? uint16_t(value) : scaled(value);
            }
        }
        converter.convertLabRow(lab.data(), row, int(m_layout.width));
    }
    return true;
}

bool TiffReader::applyPalette()
{
    uint16_t *maps[3] = {};
    if (!TIFFGetField(m_tiff.get(), TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]))
        return false;
    const size_t entries = size_t(1) << m_layout.bitsPerSample;
    const auto isTrueOfAll = [&maps, entries](auto predicate) {
        return std::all_of(std::begin(maps), std::end(maps),
                           [&](const uint16_t *map) { return std::all_of(map, map + entries, predicate); });
    };
    // Some writers fill the 16-bit map with 8-bit values, or with such values times 256 rather than 257.
    const bool is8Bit = isTrueOfAll([](uint16_t value) { return value < 256; });
    const bool isShifted = isTrueOfAll([](uint16_t value) { return value % 256 == 0; });
    std::array<std::array<uint8_t, 256>, 3> colors = {};
    for (size_t channel = 0; channel < 3; ++channel) {
        std::transform(maps[channel], maps[channel] + entries, colors[channel].begin(), [&](uint16_t value) {
            return is8Bit ? uint8_t(value) : isShifted ? uint8_t(value >> 8) : roundTo8Bits(value);
        });
    }
    for (int y = 0; y < int(m_layout.height); ++y) {
        uint8_t *row = rowAt<uint8_t>(y);
        for (uint32_t x = 0; x < m_layout.width; ++x, row += 4) {
            const uint8_t index = row[0];
            for (int channel = 0; channel < 3; ++channel)
                row[channel] = colors[size_t(channel)][index];
            row[3] = 255;
        }
    }
    return true;
}

bool isTiff(const QByteArray &head)
{
    constexpr char kSignatures[][5] = {"II*\0", "MM\0*", "II+\0", "MM\0+"};
    return std::any_of(std::begin(kSignatures), std::end(kSignatures),
                       [&head](const char *signature) { return head.startsWith(QByteArray(signature, 4)); });
}

} // namespace

const PictureFormat kTiffFormat = formatReadBy<TiffReader>(isTiff);

} // namespace hazelmark
