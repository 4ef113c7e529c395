#include "DecodeScope.h"
#include "JpegSource.h"

#include "Guarded.h"
#include "LargeMemory.h"
#include "PictureFormat.h"
#include "ToSrgb.h"

#include <algorithm>

namespace hazelmark {

namespace {

constexpr int kIccMarker = JPEG_APP0 + 2;
constexpr unsigned kWholeSegment = 0xffff;

/// Scans of a file that are still believed. Each one costs a pass over the whole picture, so a small hostile file could
/// otherwise keep a core busy for hours. Real files have about ten, and so many are read of a picture of any size; of
/// smaller pictures as many more as come to this number of pixels, some seconds' worth.
constexpr qint64 kUsualScans = 20;
constexpr qint64 kMaxScans = 500;
constexpr qint64 kMaxScannedPixels = 1'000'000'000;

/// Rows that are asked of the library at once; it hands back at most two MCU rows' worth.
constexpr int kRowsPerCall = 16;

class JpegReader : public PictureReader
{
public:
    explicit JpegReader(SourceFile &source)
        : m_source(source)
        , m_errors(source)
    {
        m_lib.err = &m_errors.manager;
        m_lib.client_data = &m_errors;
        m_isCreated = runGuarded(m_errors.jump, [this] { jpeg_create_decompress(&m_lib); });
        m_progress.progress_monitor = &watchScan;
        m_lib.progress = &m_progress;
    }
    ~JpegReader() override { jpeg_destroy_decompress(&m_lib); }
    JpegReader(const JpegReader &) = delete;
    JpegReader &operator=(const JpegReader &) = delete;

    std::optional<Failure> readHeader() override;
    PictureInfo info() override;
    DecodeCost cost(QSize atLeast) override;
    Outcome<Picture> decode(QSize atLeast) override;

private:
    ColorModel colorModel() const;
    QByteArray iccProfile();
    std::optional<QSizeF> dpi() const;
    static void watchScan(j_common_ptr lib);
    void chooseScale(QSize atLeast);
    void readRows(uchar *bits, qsizetype stride);
    void readCmykRows(const ToSrgb &converter, uint8_t *cmyk, uchar *bits, qsizetype stride);
    qint64 blockCount() const;
    bool lacksScans();

    SourceFile &m_source;
    jpeg_decompress_struct m_lib = {};
    JpegErrors m_errors;
    JpegSource m_input{m_source, m_errors};
    jpeg_progress_mgr m_progress = {};
    bool m_isCreated = false;
};

/// Called again and again while scans are read, and while rows are.
void JpegReader::watchScan(j_common_ptr lib)
{
    auto decompress = reinterpret_cast<j_decompress_ptr>(lib);
    auto *errors = static_cast<JpegErrors *>(lib->client_data);
    const qint64 pixels = std::max(qint64(decompress->image_width) * decompress->image_height, qint64(1));
    if (decompress->input_scan_number > std::clamp(kMaxScannedPixels / pixels, kUsualScans, kMaxScans))
        refuseJpeg(lib, "it has too many scans");
    for (int i = 0; i < decompress->comps_in_scan; ++i)
        errors->seenComponents |= 1u << decompress->cur_comp_info[i]->component_index;
    const jpeg_progress_mgr &progress = *lib->progress;
    const double pass = double(progress.pass_counter) / double(std::max(progress.pass_limit, 1L));
    DecodeScope::tellProgress((progress.completed_passes + pass) / std::max(progress.total_passes, 1));
}

std::optional<Failure> JpegReader::readHeader()
{
    if (!m_isCreated)
        return m_errors.failure();
    m_input.attach(m_lib);
    const bool read = runGuarded(m_errors.jump, [this] {
        jpeg_save_markers(&m_lib, kIccMarker, kWholeSegment);
        jpeg_read_header(&m_lib, TRUE);
    });
    if (!read)
        return m_errors.failure();
    m_input.endHeader();
    return m_source.checkSize(m_lib.image_width, m_lib.image_height);
}

ColorModel JpegReader::colorModel() const
{
    switch (m_lib.jpeg_color_space) {
    case JCS_GRAYSCALE:
        return ColorModel::Gray;
    case JCS_CMYK:
    case JCS_YCCK:
        return ColorModel::Cmyk;
    default:
        return ColorModel::Rgb;
    }
}

QByteArray JpegReader::iccProfile()
{
    JOCTET *bytes = nullptr;
    unsigned size = 0;
    // A profile whose segments do not fit together is passed over: the picture is worth more.
    const bool read = runGuarded(m_errors.jump, [&] {
        if (!jpeg_read_icc_profile(&m_lib, &bytes, &size))
            size = 0;
    });
    const QByteArray profile =
        read && size > 0 ? QByteArray(reinterpret_cast<const char *>(bytes), qsizetype(size)) : QByteArray();
    std::free(bytes);
    return profile;
}

std::optional<QSizeF> JpegReader::dpi() const
{
    constexpr UINT8 kPerInch = 1;
    constexpr UINT8 kPerCentimetre = 2;
    if (!m_lib.saw_JFIF_marker || m_lib.X_density == 0 || m_lib.Y_density == 0)
        return std::nullopt;
    const QSizeF density(m_lib.X_density, m_lib.Y_density);
    if (m_lib.density_unit == kPerInch)
        return density;
    if (m_lib.density_unit == kPerCentimetre)
        return density * kCentimetresPerInch;
    return std::nullopt; // an aspect ratio only
}

PictureInfo JpegReader::info()
{
    PictureInfo info;
    info.format = "jpeg";
    info.frames = {QSize(int(m_lib.image_width), int(m_lib.image_height))};
    info.colorModel = colorModel();
    info.bitsPerChannel = m_lib.data_precision;
    info.iccProfile = iccProfile();
    info.dpi = dpi();
    return info;
}

/// The smallest of the scales that the library has fast transforms for.
void JpegReader::chooseScale(QSize atLeast)
{
    m_lib.scale_num = m_lib.scale_denom = 1;
    if (atLeast.isEmpty())
        return;
    for (unsigned denominator : {8u, 4u, 2u}) {
        const auto scaled = [denominator](JDIMENSION side) { return int((side + denominator - 1) / denominator); };
        if (scaled(m_lib.image_width) >= atLeast.width() && scaled(m_lib.image_height) >= atLeast.height()) {
            m_lib.scale_denom = denominator;
            return;
        }
    }
}

/// Of all components.
qint64 JpegReader::blockCount() const
{
    qint64 count = 0;
    for (int i = 0; i < m_lib.num_components; ++i)
        count += qint64(m_lib.comp_info[i].width_in_blocks) * m_lib.comp_info[i].height_in_blocks;
    return count;
}

/// The coefficients of a picture of several scans are kept until the last one has been read.
DecodeCost JpegReader::cost(QSize atLeast)
{
    constexpr qint64 kBlockSize = DCTSIZE2 * sizeof(JCOEF);
    chooseScale(atLeast);
    const auto scaled = [this](JDIMENSION side) { return (qint64(side) + m_lib.scale_denom - 1) / m_lib.scale_denom; };
    DecodeCost cost{scaled(m_lib.image_width) * scaled(m_lib.image_height) *
                    (colorModel() == ColorModel::Gray ? 1 : 4)};
    if (jpeg_has_multiple_scans(&m_lib))
        cost.working = blockCount() * kBlockSize;
    return cost;
}

Outcome<Picture> JpegReader::decode(QSize atLeast)
{
    // A block takes a bit at least, save where an arithmetic coder has nothing new to say.
    if (!m_lib.arith_code && blockCount() / 8 > m_source.size())
        return m_source.failure(Failure::Reason::Truncated, QStringLiteral("the file is far too short for its size"));
    Picture picture;
    picture.fileColorModel = colorModel();
    const QByteArray profile = iccProfile();
    const bool isGray = picture.fileColorModel == ColorModel::Gray;
    const bool isCmyk = picture.fileColorModel == ColorModel::Cmyk;
    m_lib.out_color_space = isGray ? JCS_GRAYSCALE : isCmyk ? JCS_CMYK : JCS_EXT_RGBX;
    chooseScale(atLeast);
    if (!runGuarded(m_errors.jump, [&] { jpeg_start_decompress(&m_lib); }))
        return m_errors.failure();
    if (lacksScans())
        return m_source.failure(Failure::Reason::Truncated, QStringLiteral("the file ends before its last scan"));

    const QSize size(int(m_lib.output_width), int(m_lib.output_height));
    picture.pixels = makeLargeBitmap(size, isGray ? QImage::Format_Grayscale8 : QImage::Format_RGBX8888);
    if (picture.pixels.isNull())
        return m_source.failure(Failure::Reason::OutOfMemory);
    uchar *bits = picture.pixels.bits();
    const qsizetype stride = picture.pixels.bytesPerLine();

    const ToSrgb converter = isCmyk ? ToSrgb::fromCmyk(profile) : ToSrgb();
    std::vector<uint8_t> cmyk(isCmyk ? size_t(size.width()) * 4 : 0);
    picture.convertedToSrgb = isCmyk;
    if (!isCmyk)
        picture.iccProfile = profile;
    const bool read = runGuarded(m_errors.jump, [&] {
        if (isCmyk)
            readCmykRows(converter, cmyk.data(), bits, stride);
        else
            readRows(bits, stride);
    });
    if (!read)
        return m_errors.failure();
    const bool isFinished = runGuarded(m_errors.jump, [&] { jpeg_finish_decompress(&m_lib); });
    // The arithmetic decoder takes missing data for zeros, which encoders may leave out: only a real end marker tells.
    if (m_lib.arith_code && m_input.hasEnded())
        return m_source.failure(Failure::Reason::Truncated);
    picture.isPartlyDamaged = m_errors.isDamaged || !isFinished;
    return picture;
}

void JpegReader::readRows(uchar *bits, qsizetype stride)
{
    JSAMPROW rows[kRowsPerCall];
    while (m_lib.output_scanline < m_lib.output_height) {
        const JDIMENSION first = m_lib.output_scanline;
        const JDIMENSION count = std::min(JDIMENSION(kRowsPerCall), m_lib.output_height - first);
        for (JDIMENSION row = 0; row < count; ++row)
            rows[row] = bits + qsizetype(first + row) * stride;
        jpeg_read_scanlines(&m_lib, rows, count);
    }
}

void JpegReader::readCmykRows(const ToSrgb &converter, uint8_t *cmyk, uchar *bits, qsizetype stride)
{
    const int width = int(m_lib.output_width);
    const bool isInverted = m_lib.saw_Adobe_marker; // such files store the light that is left, not the ink
    JSAMPROW row = cmyk;
    while (m_lib.output_scanline < m_lib.output_height) {
        uchar *target = bits + qsizetype(m_lib.output_scanline) * stride;
        jpeg_read_scanlines(&m_lib, &row, 1);
        if (isInverted)
            std::transform(cmyk, cmyk + 4 * qsizetype(width), cmyk, [](uint8_t light) { return uint8_t(255 - light); });
        converter.convertRow(cmyk, target, width);
    }
}

/// Whether scans are missing at the end; to be asked when the library has started, which is when it has read all scans
/// of a file that has several. One missing end marker after the last pixel is forgiven. Some programs leave the finest
/// scans out and end such a file properly; where all of a frequency is missing, that is no longer the whole picture.
bool JpegReader::lacksScans()
{
    if (!jpeg_has_multiple_scans(&m_lib))
        return false;
    if (m_errors.seenComponents != (1u << m_lib.num_components) - 1)
        return true;
    const auto isAny = [this](auto predicate) {
        for (int component = 0; m_lib.coef_bits && component < m_lib.num_components; ++component) {
            const int *missingBits = m_lib.coef_bits[component];
            if (std::any_of(missingBits, missingBits + DCTSIZE2, predicate))
                return true;
        }
        return false;
    };
    const bool lacksFrequencies = isAny([](int bits) { return bits < 0; });
    m_errors.isDamaged = m_errors.isDamaged || lacksFrequencies;
    return m_input.hasEnded() && (lacksFrequencies || isAny([](int bits) { return bits != 0; }));
}

bool isJpeg(const QByteArray &head)
{
    return head.startsWith("\xff\xd8\xff");
}

} // namespace

const PictureFormat kJpegFormat = formatReadBy<JpegReader>(isJpeg);

} // namespace hazelmark
