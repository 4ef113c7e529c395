#include "TestFiles.h"
#include "TestPictures.h"

#include <QColorSpace>

#include <cmath>

#include <png.h>
#include <tiffio.h>

namespace hazelmark {

namespace {

template <typename T>
std::vector<uint8_t> bytesOf(const std::vector<T> &values)
{
    const auto *bytes = reinterpret_cast<const uint8_t *>(values.data());
    return std::vector<uint8_t>(bytes, bytes + values.size() * sizeof(T));
}

TestTiff page(int width, int bits, int samplesPerPixel, int photometric, std::vector<uint8_t> rows)
{
    TestTiff page;
    page.width = width;
    page.bits = bits;
    page.samplesPerPixel = samplesPerPixel;
    page.photometric = photometric;
    page.rows = std::move(rows);
    return page;
}

TestTiff withAlpha(TestTiff page, uint16_t extraSample)
{
    page.extraSamples = {extraSample};
    return page;
}

TestTiff floats(int bits, std::vector<uint8_t> row)
{
    TestTiff gray = page(5, bits, 1, PHOTOMETRIC_MINISBLACK, std::move(row));
    gray.sampleFormat = SAMPLEFORMAT_IEEEFP;
    return gray;
}

/// Some writers fill the 16-bit map with 8-bit values, or with such values times 256 rather than 257.
TestTiff palette(int factor)
{
    TestTiff page = hazelmark::page(3, 2, 1, PHOTOMETRIC_PALETTE, {0b00011011});
    for (const int value : {10, 255, 1, 0, 20, 0, 2, 0, 30, 128, 3, 0})
        page.colorMap.push_back(uint16_t(value * factor));
    return page;
}

/// 16 × 16 blocks of plain colours, of which JPEG loses nothing.
QByteArray jpeg(TestJpeg::Colors colors, const std::vector<std::vector<int>> &blocks, bool hasAdobeMarker = true)
{
    std::vector<uint8_t> samples;
    for (int y = 0; y < 16; ++y) {
        for (size_t x = 0; x < 16 * blocks.size(); ++x)
            samples.insert(samples.end(), blocks[x / 16].begin(), blocks[x / 16].end());
    }
    const TestJpeg kind{.colors = colors, .hasAdobeMarker = hasAdobeMarker, .iccProfile = QByteArray(300, 'x')};
    return makeJpeg(kind, 16 * int(blocks.size()), 16, samples);
}

/// A picture of one row, or whose first row tells.
struct Kind
{
    const char *what;
    QByteArray file;
    QImage::Format format;
    std::vector<int> samples;
    int bits = 8; ///< a channel, as the file has them
    ColorModel model = ColorModel::Rgb;
    double tolerance = 0; ///< of a sample in 8 bits
    int step = 1;         ///< samples from one of those to the next
};

constexpr auto kGray8 = QImage::Format_Grayscale8;
constexpr auto kGray16 = QImage::Format_Grayscale16;
constexpr auto kRgb8 = QImage::Format_RGBX8888;
constexpr auto kRgb16 = QImage::Format_RGBX64;
constexpr auto kRgba8 = QImage::Format_RGBA8888;
constexpr auto kRgba16 = QImage::Format_RGBA64;

} // namespace

class Kinds : public FolderTest
{
protected:
    QByteArray tiff(const std::vector<TestTiff> &pages) const
    {
        return makeTiff(pages, pathOf(QStringLiteral("scratch")));
    }

    void expectKinds(const std::vector<Kind> &kinds) const
    {
        for (const Kind &kind : kinds) {
            SCOPED_TRACE(kind.what);
            const auto [info, picture] = read(kind.file);
            ASSERT_EQ(picture.pixels.format(), kind.format);
            const std::vector<int> row = samplesOf(picture.pixels, kind.step * int(kind.samples.size()));
            const double unit = picture.pixels.depth() == 64 || kind.format == kGray16 ? 257 : 1;
            for (size_t i = 0; i < kind.samples.size(); ++i)
                EXPECT_NEAR(row[i * size_t(kind.step)] / unit, kind.samples[i] / unit, kind.tolerance) << i;
            EXPECT_EQ(info.colorModel, kind.model);
            EXPECT_EQ(picture.fileColorModel, kind.model);
            EXPECT_EQ(picture.convertedToSrgb, kind.model == ColorModel::Cmyk || kind.model == ColorModel::Lab);
            EXPECT_EQ(info.bitsPerChannel, kind.bits);
            EXPECT_EQ(info.hasAlpha, picture.pixels.hasAlphaChannel());
            EXPECT_EQ(info.frames.front(), picture.pixels.size());
            EXPECT_EQ(picture.iccProfile, picture.convertedToSrgb ? QByteArray() : info.iccProfile);
            EXPECT_FALSE(picture.isPartlyDamaged);
        }
    }
};

TEST_F(Kinds, GrayOfEveryDepthIsScaledToTheFullRange)
{
    const std::vector<GrayRow> ofBoth = {{1, {0b01000000}, {0, 255}},
                                         {2, {0b00011011}, {0, 85, 170, 255}},
                                         {4, {0x0f, 0x50}, {0, 255, 85, 0}},
                                         {8, {0, 9, 255}, {0, 9, 255}}};
    std::vector<Kind> kinds;
    const auto add = [&](const char *what, const QByteArray &file, const GrayRow &row) {
        kinds.push_back({what, file, row.bits > 8 ? kGray16 : kGray8, row.expected, row.bits, ColorModel::Gray});
    };
    const auto addTiff = [&](const GrayRow &row) {
        TestTiff gray = page(int(row.expected.size()), row.bits, 1, PHOTOMETRIC_MINISBLACK, row.row);
        add("TIFF", tiff({gray}), row);
        gray.photometric = PHOTOMETRIC_MINISWHITE;
        GrayRow inverted = row;
        for (int &value : inverted.expected)
            value = (row.bits > 8 ? 65535 : 255) - value;
        add("inverted TIFF", tiff({gray}), inverted);
    };
    const auto addPng = [&](const GrayRow &row) {
        const TestPng kind{.colorType = PNG_COLOR_TYPE_GRAY, .bitDepth = row.bits};
        add("PNG", makePng(kind, int(row.expected.size()), 1, row.row), row);
    };
    for (const GrayRow &row : ofBoth) {
        addTiff(row);
        addPng(row);
    }
    addPng({16, {0x12, 0x34, 0xff, 0xfe}, {0x1234, 0xfffe}});
    addTiff({12, {0x00, 0x0f, 0xff, 0x80, 0x00}, {0, 65535, 32776}});
    addTiff({16, bytesOf<uint16_t>({0x1234, 0xfffe}), {0x1234, 0xfffe}});
    addTiff({32, bytesOf<uint32_t>({0x12345678, 0xffffffff}), {0x1234, 0xffff}});
    add("floats", tiff({floats(32, bytesOf<float>({-1.0F, 0.0F, 0.5F, 7.0F, NAN}))}),
        {32, {}, {0, 0, 32768, 65535, 0}});
    add("doubles", tiff({floats(64, bytesOf<double>({-1.0, 1.0, 0.25, HUGE_VAL, double(NAN)}))}),
        {64, {}, {0, 65535, 16384, 65535, 0}});
    kinds.push_back(
        {"JPEG", jpeg(TestJpeg::Colors::Gray, {{0}, {77}, {255}}), kGray8, {0, 77, 255}, 8, ColorModel::Gray, 0, 16});
    expectKinds(kinds);
}

TEST_F(Kinds, ColoursAndAlphaComeStraightAndUnconverted)
{
    TestPng paletted{.colorType = PNG_COLOR_TYPE_PALETTE, .bitDepth = 2};
    paletted.palette = QByteArray("\x0a\x14\x1e\xff\x00\x80\x01\x02\x03", 9);
    TestPng transparent = paletted;
    transparent.transparency = QByteArray("\x00\x40", 2);
    TestPng oneColour{.colorType = PNG_COLOR_TYPE_RGB};
    oneColour.transparency = QByteArray("\0\x01\0\x02\0\x03", 6);
    TestPng gamma{.colorType = PNG_COLOR_TYPE_RGB};
    gamma.extraChunkType = "gAMA";
    gamma.extraChunk = QByteArray("\x00\x01\x86\xa0", 4); // 1.0
    const QByteArray grays = makePng({.colorType = PNG_COLOR_TYPE_GRAY_ALPHA}, 2, 1, {50, 0, 60, 128});
    const QByteArray deepGray = makePng({.colorType = PNG_COLOR_TYPE_GRAY_ALPHA, .bitDepth = 16}, 1, 1, {1, 2, 3, 4});
    const std::vector<int> opaque = {10, 20, 30, 255, 255, 0, 128, 255, 1, 2, 3, 255};
    const std::vector<int> seeThrough = {10, 20, 30, 0, 255, 0, 128, 64, 1, 2, 3, 255};
    const std::vector<int> alphas = {50, 25, 0, 100, 9, 8, 7, 0, 200, 100, 1, 255};
    const std::vector<int> divided = {128, 64, 0, 100, 9, 8, 7, 0, 200, 100, 1, 255};
    const TestTiff rgba = page(3, 8, 4, PHOTOMETRIC_RGB, {alphas.begin(), alphas.end()});
    const TestTiff deepTiff = page(2, 16, 2, PHOTOMETRIC_MINISBLACK, bytesOf<uint16_t>({1000, 30000, 7, 65535}));
    const std::vector<int> deepGrays = {1000, 1000, 1000, 30000, 7, 7, 7, 65535};
    const auto tiffWith = [&](const TestTiff &page, uint16_t extra) { return tiff({withAlpha(page, extra)}); };
    // Not taken for luminance and chroma: the reds, then red and green of the last.
    const QByteArray rgbJpeg = jpeg(TestJpeg::Colors::Rgb, {{200, 10, 30}, {0, 90, 250}});
    constexpr ColorModel kGray = ColorModel::Gray;
    expectKinds({
        {"PNG palette", makePng(paletted, 3, 1, {0b00011000}), kRgb8, opaque},
        {"PNG palette with alpha", makePng(transparent, 3, 1, {0b00011000}), kRgba8, seeThrough},
        {"PNG transparent colour", makePng(oneColour, 2, 1, {1, 2, 3, 1, 2, 4}), kRgba8, {1, 2, 3, 0, 1, 2, 4, 255}},
        {"PNG with a gamma", makePng(gamma, 1, 1, {100, 50, 3}), kRgb8, {100, 50, 3, 255}},
        {"PNG grey and alpha", grays, kRgba8, {50, 50, 50, 0, 60, 60, 60, 128}, 8, kGray},
        {"PNG deep grey and alpha", deepGray, kRgba16, {0x102, 0x102, 0x102, 0x304}, 16, kGray},
        {"TIFF alpha", tiffWith(rgba, EXTRASAMPLE_UNASSALPHA), kRgba8, alphas},
        {"TIFF multiplied alpha", tiffWith(rgba, EXTRASAMPLE_ASSOCALPHA), kRgba8, divided},
        {"TIFF selection", tiffWith(rgba, EXTRASAMPLE_UNSPECIFIED), kRgb8, {50, 25, 0, 255, 9, 8, 7, 255}},
        {"TIFF deep grey", tiffWith(deepTiff, EXTRASAMPLE_UNASSALPHA), kRgba16, deepGrays, 16, kGray},
        {"JPEG of RGB", rgbJpeg, kRgb8, {200, 0}, 8, ColorModel::Rgb, 0, 64},
        {"TIFF palette", tiff({palette(257)}), kRgb8, opaque},
        {"TIFF palette of bytes", tiff({palette(1)}), kRgb8, opaque},
        {"TIFF palette of shifted bytes", tiff({palette(256)}), kRgb8, opaque},
    });
}

/// Ink by the plain formula; Lab against the values of the published formulas (Bradford, D50 to D65).
TEST_F(Kinds, InkAndLabBecomeSrgb)
{
    const int L = 51;
    const int a = 37;
    const int b = 25;
    const auto l8 = uint8_t(std::lround(L * 2.55));
    const std::vector<int> lab8 = {185, 93, 81};
    const std::vector<int> lab16 = {47622, 24030, 20843};
    const auto lab = [&](int bits, int photometric, const std::vector<uint8_t> &row) {
        return tiff({page(1, bits, 3, photometric, row)});
    };
    const auto deep = [](double l, int a, int b) {
        return bytesOf<uint16_t>({uint16_t(l), uint16_t(a * 256), uint16_t(b * 256)});
    };
    const auto signed8 = lab(8, PHOTOMETRIC_CIELAB, {l8, uint8_t(a), uint8_t(b)});
    const auto offset8 = lab(8, PHOTOMETRIC_ICCLAB, {l8, uint8_t(a + 128), uint8_t(b + 128)});
    const auto signed16 = lab(16, PHOTOMETRIC_CIELAB, deep(L * 655.35, a, b));
    const auto offset16 = lab(16, PHOTOMETRIC_ICCLAB, deep(L * 652.8, a + 128, b + 128));
    using Colors = TestJpeg::Colors;
    const std::vector<std::vector<int>> inks = {{0, 0, 0, 0}, {0, 255, 255, 0}, {0, 0, 0, 255}, {51, 102, 0, 51}};
    const std::vector<int> reds = {255, 255, 0, 163}; // the profile is none: the plain formula is taken
    const auto ink = tiff({page(3, 8, 4, PHOTOMETRIC_SEPARATED, {0, 0, 0, 0, 255, 0, 0, 0, 51, 102, 0, 51})});
    const std::vector<int> shown = {255, 255, 255, 255, 0, 255, 255, 255, 163, 122, 204, 255};
    const auto deepInk = tiff({page(3, 16, 4, PHOTOMETRIC_SEPARATED,
                                    bytesOf<uint16_t>({0, 0, 0, 0, 65535, 0, 0, 0, 13107, 26214, 0, 13107}))});
    const std::vector<int> deepShown = {65535, 65535, 65535, 65535, 0, 65535, 65535, 65535, 41942, 31457, 52428, 65535};
    constexpr ColorModel kCmyk = ColorModel::Cmyk;
    constexpr ColorModel kLab = ColorModel::Lab;
    expectKinds({
        {"JPEG of ink", jpeg(Colors::Cmyk, inks), kRgb8, reds, 8, kCmyk, 2, 64},
        {"JPEG of ink as it is", jpeg(Colors::Cmyk, inks, false), kRgb8, reds, 8, kCmyk, 2, 64},
        {"JPEG of ink as luminance", jpeg(Colors::Ycck, inks), kRgb8, reds, 8, kCmyk, 2, 64},
        {"ink", ink, kRgb8, shown, 8, kCmyk},
        {"deep ink", deepInk, kRgb16, deepShown, 16, kCmyk},
        {"Lab", signed8, kRgb8, lab8, 8, kLab, 1.3},
        {"Lab of profiles", offset8, kRgb8, lab8, 8, kLab, 1.3},
        {"deep Lab", signed16, kRgb16, lab16, 16, kLab, 1.01},
        {"deep Lab of profiles", offset16, kRgb16, lab16, 16, kLab, 1.01},
    });
}

TEST_F(Kinds, EveryLayoutOfTheSamplesGivesTheSamePixels)
{
    std::vector<uint8_t> rows;
    for (int i = 0; i < 37 * 41 * 3; ++i)
        rows.push_back(uint8_t(i * 11 + i / 100));
    TestTiff plain = page(37, 8, 3, PHOTOMETRIC_RGB, rows);
    plain.height = 41;
    const QImage expected = decoded(tiff({plain})).pixels;
    EXPECT_EQ(samplesOf(expected, 8), (std::vector<int>{0, 11, 22, 255, 33, 44, 55, 255}));
    for (const bool isInterlaced : {false, true}) {
        const TestPng kind{.colorType = PNG_COLOR_TYPE_RGB, .isInterlaced = isInterlaced};
        EXPECT_TRUE(samePixels(decoded(makePng(kind, 37, 41, rows)).pixels, expected)) << isInterlaced;
    }
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS, COMPRESSION_ADOBE_DEFLATE}) {
        for (const int tileSide : {0, 16}) {
            for (const bool isPlanar : {false, true}) {
                TestTiff other = plain;
                other.compression = compression;
                other.tileSide = tileSide;
                other.isPlanar = isPlanar;
                other.orientation = ORIENTATION_RIGHTTOP; // told by the metadata, never applied here
                EXPECT_TRUE(samePixels(decoded(tiff({other})).pixels, expected))
                    << compression << " " << tileSide << " " << isPlanar;
            }
        }
    }
}

TEST_F(Kinds, PagesThatAreCopiesOrMasksAreNoFrames)
{
    TestTiff thumbnail = page(2, 8, 1, PHOTOMETRIC_MINISBLACK, {1, 2});
    thumbnail.subfileType = FILETYPE_REDUCEDIMAGE;
    TestTiff picture = page(3, 8, 1, PHOTOMETRIC_MINISBLACK, {10, 20, 30, 40, 50, 60});
    picture.height = 2;
    TestTiff mask = page(3, 1, 1, PHOTOMETRIC_MASK, {0});
    mask.subfileType = FILETYPE_MASK;
    TestTiff second = page(5, 8, 3, PHOTOMETRIC_RGB, std::vector<uint8_t>(15, 9));
    second.subfileType = FILETYPE_PAGE;
    const Read got = read(tiff({thumbnail, picture, mask, second}));
    EXPECT_EQ(got.info.frames, (std::vector<QSize>{QSize(3, 2), QSize(5, 1)}));
    EXPECT_EQ(samplesOf(got.picture.pixels, 3), (std::vector<int>{10, 20, 30}));
    // A file of nothing but copies still shows its first.
    EXPECT_EQ(infoOf(tiff({thumbnail})).frames, std::vector<QSize>{QSize(2, 1)});
}

/// Better no picture than one with samples that were taken for something else.
TEST_F(Kinds, TiffFilesWithSamplesOfUnknownMeaningAreRefused)
{
    const std::vector<uint8_t> row(24, 100);
    TestTiff negative = page(2, 8, 1, PHOTOMETRIC_MINISBLACK, row);
    negative.sampleFormat = SAMPLEFORMAT_INT;
    for (const TestTiff &odd :
         {negative, page(2, 24, 1, PHOTOMETRIC_MINISBLACK, row), page(2, 12, 3, PHOTOMETRIC_CIELAB, row),
          page(2, 8, 3, PHOTOMETRIC_SEPARATED, row), page(2, 8, 1, PHOTOMETRIC_CFA, row)})
        EXPECT_EQ(reasonFor(tiff({odd})), Failure::Reason::UnsupportedFormat) << odd.photometric << " " << odd.bits;
}

/// The first page of a camera raw file is a small preview: handing it out would pass for the photo.
TEST_F(Kinds, CameraRawFilesAreRefused)
{
    const QString path = pathOf(QStringLiteral("raw"));
    makeTiff({page(2, 8, 1, PHOTOMETRIC_MINISBLACK, {1, 2})}, path);
    TIFF *tiff = TIFFOpen(QFile::encodeName(path).constData(), "r+");
    const uint8_t version[] = {1, 4, 0, 0};
    TIFFSetField(tiff, TIFFTAG_DNGVERSION, version);
    TIFFRewriteDirectory(tiff);
    TIFFClose(tiff);
    EXPECT_EQ(reasonFor(contentOf(path)), Failure::Reason::UnsupportedFormat);
}

TEST_F(Kinds, SubsampledChromaIsReadUnturned)
{
    // Two pixels of grey a block: luminance twice, then neutral chroma.
    const QString path = pathOf(QStringLiteral("picture"));
    TIFF *tiff = TIFFOpen(QFile::encodeName(path).constData(), "w");
    const std::pair<int, int> tags[] = {{TIFFTAG_IMAGEWIDTH, 4},
                                        {TIFFTAG_IMAGELENGTH, 2},
                                        {TIFFTAG_BITSPERSAMPLE, 8},
                                        {TIFFTAG_SAMPLESPERPIXEL, 3},
                                        {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_YCBCR},
                                        {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                                        {TIFFTAG_ORIENTATION, ORIENTATION_BOTRIGHT},
                                        {TIFFTAG_ROWSPERSTRIP, 2}};
    for (const auto &[tag, value] : tags)
        TIFFSetField(tiff, uint32_t(tag), value);
    TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 1);
    uint8_t data[] = {10, 20, 128, 128, 30, 40, 128, 128, 50, 60, 128, 128, 70, 80, 128, 128};
    ASSERT_EQ(TIFFWriteEncodedStrip(tiff, 0, data, sizeof data), tmsize_t(sizeof data));
    TIFFClose(tiff);
    expectKinds({{"YCbCr",
                  contentOf(path),
                  kRgb8,
                  {10, 10, 10, 255, 20, 20, 20, 255, 30, 30, 30, 255, 40, 40, 40, 255},
                  8,
                  ColorModel::Rgb,
                  1}});
}

TEST_F(Kinds, OnlyAbsoluteDensitiesAreResolutions)
{
    const auto ofJpeg = [&](int unit) {
        const std::vector<uint8_t> samples(16 * 16 * 3, 90);
        return infoOf(makeJpeg({.densityUnit = unit, .densityX = 300, .densityY = 150}, 16, 16, samples)).dpi;
    };
    const auto ofPng = [&](char unit) {
        TestPng kind{.colorType = PNG_COLOR_TYPE_RGB};
        kind.extraChunkType = "pHYs";
        kind.extraChunk = QByteArray("\0\0\x2e\x23\0\0\x17\x12", 8) + unit; // 11811 and 5906 a metre
        return infoOf(makePng(kind, 1, 1, {1, 2, 3})).dpi;
    };
    const auto ofTiff = [&](double resolution, int unit) {
        TestTiff gray = page(1, 8, 1, PHOTOMETRIC_MINISBLACK, {1});
        gray.resolution = resolution;
        gray.resolutionUnit = unit;
        return infoOf(tiff({gray})).dpi;
    };
    const std::optional<QSizeF> none;
    const struct
    {
        std::optional<QSizeF> dpi;
        std::optional<QSizeF> expected;
    } rows[] = {{ofJpeg(0), none},
                {ofJpeg(1), QSizeF(300, 150)},
                {ofJpeg(2), QSizeF(762, 381)},
                {ofPng(0), none},
                {ofPng(1), QSizeF(300, 150)},
                {ofTiff(0, RESUNIT_INCH), none},
                {ofTiff(300, RESUNIT_NONE), none},
                {ofTiff(300, RESUNIT_INCH), QSizeF(300, 300)},
                {ofTiff(300, RESUNIT_CENTIMETER), QSizeF(762, 762)}};
    for (size_t i = 0; i < std::size(rows); ++i) {
        const auto &[dpi, expected] = rows[i];
        ASSERT_EQ(dpi.has_value(), expected.has_value()) << i;
        EXPECT_NEAR(dpi.value_or(QSizeF()).width(), expected.value_or(QSizeF()).width(), 0.02) << i;
        EXPECT_NEAR(dpi.value_or(QSizeF()).height(), expected.value_or(QSizeF()).height(), 0.02) << i;
    }
}

TEST_F(Kinds, PngProfileIsKeptUnjudgedButNotABomb)
{
    TestPng kind{.colorType = PNG_COLOR_TYPE_RGB};
    kind.extraChunkType = "iCCP";
    const auto chunkOf = [](const QByteArray &profile) { return QByteArray("name\0\0", 6) + deflated(profile); };
    const QByteArray odd = "no profile at all, but the file's own bytes";
    kind.extraChunk = chunkOf(odd);
    const Read got = read(makePng(kind, 1, 1, {1, 2, 3}));
    EXPECT_EQ(got.info.iccProfile, odd);
    EXPECT_EQ(got.picture.iccProfile, odd);
    for (const QByteArray &broken : {chunkOf(QByteArray(100 * 1024 * 1024, 'b')), chunkOf(odd).chopped(4),
                                     QByteArray(200, 'n'), QByteArray("name")}) {
        kind.extraChunk = broken;
        EXPECT_TRUE(infoOf(makePng(kind, 1, 1, {1, 2, 3})).iccProfile.isEmpty());
    }
}

TEST_F(Kinds, OfPluginsComeAsTheyWereSaved)
{
    const QImage rgb = makePicture(45, 20, kRgb8);
    for (const auto &[format, image] : {std::pair("bmp", rgb),
                                        {"bmp", rgb.convertToFormat(QImage::Format_Indexed8)},
                                        {"bmp", rgb.convertToFormat(QImage::Format_Mono)},
                                        {"ppm", rgb},
                                        {"pgm", makePicture(21, 9, kGray8)},
                                        {"webp", makePicture(40, 30, kRgba8)}}) {
        const QByteArray file = savedByQt(image, format, 100);
        if (file.isEmpty())
            continue; // the plugin is not installed
        const auto [info, picture] = read(file);
        const auto comparable = [](const QImage &i) {
            return i.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
        };
        EXPECT_TRUE(samePixels(comparable(picture.pixels), comparable(image))) << format << " " << image.format();
        EXPECT_EQ(info.frames, std::vector<QSize>{image.size()});
        EXPECT_EQ(info.hasAlpha, image.hasAlphaChannel());
        EXPECT_EQ(info.colorModel, picture.fileColorModel);
        EXPECT_TRUE(format == info.format || info.format == "ppm" || info.format == "pgm") << info.format.toStdString();
    }
}

TEST_F(Kinds, RunLengthBmpIsWholeOrRefused)
{
    // Eight-bit run-length coding of a 6 × 2 picture: a run of 6; 4 literals and a run of 2; the end mark.
    const QByteArray pixels("\x06\x01\0\0\0\x04\x01\x02\x01\x02\x02\x01\0\x01", 14);
    QByteArray file("BM\0\0\0\0\0\0\0\0\x42\0\0\0\x28\0\0\0\x06\0\0\0\x02\0\0\0\x01\0\x08\0\x01\0\0\0", 34);
    file += QByteArray("\x0e\0\0\0\x13\x0b\0\0\x13\x0b\0\0\x03\0\0\0\0\0\0\0", 20); // size, 72 dpi, 3 colours
    file += QByteArray("\0\0\0\0\x10\x20\x30\0\x40\x50\x60\0", 12);
    const auto [info, picture] = read(file + pixels);
    ASSERT_EQ(picture.pixels.size(), QSize(6, 2));
    EXPECT_EQ(samplesOf(picture.pixels, 8), (std::vector<int>{0x30, 0x20, 0x10, 255, 0x60, 0x50, 0x40, 255}));
    ASSERT_TRUE(info.dpi);
    EXPECT_NEAR(info.dpi->width(), 72, 0.01);
    EXPECT_EQ(reasonFor(file + pixels.left(9)), Failure::Reason::Truncated);
    EXPECT_EQ(reasonFor(file), Failure::Reason::Truncated);
}

TEST_F(Kinds, ProfilesOfBmpAndWebPAreKept)
{
    const QByteArray profile = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    // A header of 124 bytes; 2 × 1 pixels of 24 bits; the profile behind them.
    QByteArray header = littleEndian(124) + littleEndian(2) + littleEndian(1) + QByteArray("\x01\0\x18\0", 4);
    header += QByteArray(124 - header.size(), '\0');
    header.replace(56, 4, "DEBM"); // the colour space: an embedded profile
    header.replace(112, 4, littleEndian(124 + 8));
    header.replace(116, 4, littleEndian(quint32(profile.size())));
    const QByteArray bmp = "BM" + littleEndian(0) + littleEndian(0) + littleEndian(14 + 124) + header +
                           QByteArray("\x01\x02\x03\x04\x05\x06\0\0", 8) + profile;
    QImage image = makePicture(40, 30, kRgb8);
    image.setColorSpace(QColorSpace::AdobeRgb);
    for (const QByteArray &file : {bmp, savedByQt(image, "webp", 100)}) {
        if (file.isEmpty())
            continue; // the plugin is not installed
        const auto [info, picture] = read(file);
        EXPECT_EQ(info.iccProfile, profile);
        EXPECT_EQ(picture.iccProfile, profile);
        EXPECT_EQ(picture.pixels.format(), kRgb8);
    }
}

TEST_F(Kinds, IconListsTheSizesOfAllItsPictures)
{
    const QImage small = makePicture(16, 16, kRgba8);
    const auto [info, picture] =
        read(makeIcon({savedByQt(small, "png"), savedByQt(makePicture(256, 200, kRgba8), "png")}));
    EXPECT_EQ(info.format, "ico");
    EXPECT_EQ(info.frames, (std::vector<QSize>{QSize(16, 16), QSize(256, 200)}));
    EXPECT_TRUE(info.hasAlpha);
    EXPECT_TRUE(samePixels(picture.pixels, small));
}

TEST_F(Kinds, DrawingsAndGuessesAreNoPictures)
{
    for (const QByteArray &file :
         {QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><rect width='5' height='5'/></svg>"),
          QByteArray("\0\0\x05\x05zzzzz", 9),        // as WBMP would begin
          QByteArray("\0\0\x02\0\0\0\0\0\0\0", 10)}) // a cursor of nothing
        EXPECT_EQ(reasonFor(file), Failure::Reason::NotAPicture);
}

} // namespace hazelmark
