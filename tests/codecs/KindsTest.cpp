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

TestTiff page(int width, int bits, int samplesPerPixel, int photometric, std::vector<uint8_t> rows,
              std::vector<uint16_t> extraSamples = {})
{
    TestTiff page;
    page.width = width;
    page.bits = bits;
    page.samplesPerPixel = samplesPerPixel;
    page.photometric = photometric;
    page.rows = std::move(rows);
    page.extraSamples = std::move(extraSamples);
    return page;
}

TestTiff palette(int unit)
{
    TestTiff page = hazelmark::page(3, 2, 1, PHOTOMETRIC_PALETTE, {0b00011011});
    for (const int value : {10, 255, 1, 0, 20, 0, 2, 0, 30, 128, 3, 0})
        page.colorMap.push_back(uint16_t(value * unit));
    return page;
}

/// 16 × 16 blocks of plain colours, of which JPEG loses nothing.
QByteArray jpeg(TestJpeg::Colors colors, const std::vector<std::vector<int>> &blocks)
{
    std::vector<uint8_t> samples;
    for (int y = 0; y < 16; ++y) {
        for (size_t x = 0; x < 16 * blocks.size(); ++x)
            samples.insert(samples.end(), blocks[x / 16].begin(), blocks[x / 16].end());
    }
    const TestJpeg kind{.colors = colors, .iccProfile = QByteArray(300, 'x')};
    return makeJpeg(kind, 16 * int(blocks.size()), 16, samples);
}

/// A picture of one row, or of rows that are all alike.
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

const std::vector<int> kPaletteColors = {10, 20, 30, 255, 255, 0, 128, 255, 1, 2, 3, 255};
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
            const double unit = picture.pixels.depth() == 64 || kind.format == kGray16 ? 257 : 1;
            for (int y = 0; y < picture.pixels.height(); ++y) {
                const std::vector<int> row = samplesOf(picture.pixels, kind.step * int(kind.samples.size()), y);
                for (size_t i = 0; i < kind.samples.size(); ++i)
                    EXPECT_NEAR(row[i * size_t(kind.step)] / unit, kind.samples[i] / unit, kind.tolerance) << i;
            }
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

/// Grey is scaled to the full range, colours and alpha come straight and unconverted, and ink becomes sRGB.
TEST_F(Kinds, PngAndJpegSamplesOfEveryKind)
{
    using Colors = TestJpeg::Colors;
    constexpr ColorModel kGray = ColorModel::Gray, kCmyk = ColorModel::Cmyk;
    const auto gray = [](int bits, int width, const std::vector<uint8_t> &row) {
        return makePng({.colorType = PNG_COLOR_TYPE_GRAY, .bitDepth = bits}, width, 1, row);
    };
    TestPng paletted{.colorType = PNG_COLOR_TYPE_PALETTE, .bitDepth = 2};
    paletted.palette = QByteArray("\x0a\x14\x1e\xff\x00\x80\x01\x02\x03", 9);
    TestPng transparent = paletted;
    transparent.transparency = QByteArray("\x00\x40", 2);
    TestPng gamma{.colorType = PNG_COLOR_TYPE_RGB};
    gamma.extraChunkType = "gAMA";
    gamma.extraChunk = QByteArray("\x00\x01\x86\xa0", 4); // 1.0
    const QByteArray grays = makePng({.colorType = PNG_COLOR_TYPE_GRAY_ALPHA}, 2, 1, {50, 0, 60, 128});
    const std::vector<int> seeThrough = {10, 20, 30, 0, 255, 0, 128, 64, 1, 2, 3, 255};
    // Not taken for luminance and chroma: the reds, then red and green of the last.
    const QByteArray rgbJpeg = jpeg(Colors::Rgb, {{200, 10, 30}, {0, 90, 250}});
    const std::vector<std::vector<int>> inks = {{0, 0, 0, 0}, {0, 255, 255, 0}, {0, 0, 0, 255}, {51, 102, 0, 51}};
    const std::vector<int> reds = {255, 255, 0, 163}; // the profile is none: the plain formula is taken
    expectKinds({
        {"1 bit", gray(1, 2, {0b01000000}), kGray8, {0, 255}, 1, kGray},
        {"4 bits", gray(4, 4, {0x0f, 0x50}), kGray8, {0, 255, 85, 0}, 4, kGray},
        {"16 bits", gray(16, 2, {0x12, 0x34, 0xff, 0xfe}), kGray16, {0x1234, 0xfffe}, 16, kGray},
        {"palette", makePng(paletted, 3, 1, {0b00011000}), kRgb8, kPaletteColors},
        {"palette with alpha", makePng(transparent, 3, 1, {0b00011000}), kRgba8, seeThrough},
        {"a gamma", makePng(gamma, 1, 1, {100, 50, 3}), kRgb8, {100, 50, 3, 255}},
        {"grey and alpha", grays, kRgba8, {50, 50, 50, 0, 60, 60, 60, 128}, 8, kGray},
        {"JPEG of grey", jpeg(Colors::Gray, {{0}, {77}, {255}}), kGray8, {0, 77, 255}, 8, kGray, 0, 16},
        {"JPEG of RGB", rgbJpeg, kRgb8, {200, 0}, 8, ColorModel::Rgb, 0, 64},
        {"JPEG of ink", jpeg(Colors::Cmyk, inks), kRgb8, reds, 8, kCmyk, 2, 64},
        {"JPEG of ink as luminance", jpeg(Colors::Ycck, inks), kRgb8, reds, 8, kCmyk, 2, 64},
    });
}

/// Ink by the plain formula; Lab against the values of the published formulas (Bradford, D50 to D65).
TEST_F(Kinds, TiffSamplesOfEveryKind)
{
    constexpr uint16_t kAlpha = EXTRASAMPLE_UNASSALPHA, kMultiplied = EXTRASAMPLE_ASSOCALPHA;
    constexpr int kBlack = PHOTOMETRIC_MINISBLACK, kRgb = PHOTOMETRIC_RGB;
    const std::vector<int> lab16 = {185 * 257, 93 * 257, 81 * 257};
    const auto shorts = [](const std::vector<uint16_t> &values) { return bytesOf(values); };
    const auto floats = [](int width, int bits, const std::vector<uint8_t> &row) {
        TestTiff floats = page(width, bits, 1, PHOTOMETRIC_MINISBLACK, row);
        floats.sampleFormat = SAMPLEFORMAT_IEEEFP;
        return floats;
    };
    TestTiff coarse = page(2, 8, 3, PHOTOMETRIC_YCBCR, {100, 200, 100, 200, 90, 180});
    coarse.height = 2;
    TestTiff inJpeg = page(16, 8, 3, PHOTOMETRIC_YCBCR, {});
    inJpeg.height = 16;
    inJpeg.compression = COMPRESSION_JPEG;
    for (int i = 0; i < 16 * 16; ++i)
        inJpeg.rows.insert(inJpeg.rows.end(), {200, 90, 30});
    TestTiff luminance = page(2, 16, 1, PHOTOMETRIC_LOGL, shorts({16384, 15872})); // 1 and a quarter
    TestTiff luv = page(2, 16, 3, PHOTOMETRIC_LOGLUV, shorts({16384, 6900, 15522, 15872, 6900, 15522}));
    luminance.compression = luv.compression = COMPRESSION_SGILOG;
    const std::pair<TestTiff, Kind> rows[] = {
        {palette(257), {"palette", {}, kRgb8, kPaletteColors}},
        {palette(1), {"palette of 8 bits", {}, kRgb8, kPaletteColors}},
        {palette(256), {"palette of 8 bits, shifted", {}, kRgb8, kPaletteColors}},
        {page(2, 1, 1, kBlack, {0b01000000}), {"1 bit", {}, kGray8, {0, 255}}},
        {page(4, 4, 1, kBlack, {0x0f, 0x50}), {"4 bits", {}, kGray8, {0, 255, 85, 0}}},
        {page(3, 8, 1, PHOTOMETRIC_MINISWHITE, {0, 9, 255}), {"inverted", {}, kGray8, {255, 246, 0}}},
        {page(2, 12, 1, kBlack, {0x12, 0x3f, 0xff}), {"12 bits", {}, kGray16, {4657, 65535}}},
        {page(2, 16, 1, kBlack, shorts({0x1234, 0xfffe})), {"16 bits", {}, kGray16, {0x1234, 0xfffe}}},
        {page(1, 32, 1, kBlack, {0x78, 0x56, 0x34, 0x12}), {"32 bits", {}, kGray16, {0x1234}}},
        {page(1, 16, 1, PHOTOMETRIC_MINISWHITE, shorts({0x1234})), {"inverted, 16 bits", {}, kGray16, {0xedcb}}},
        {floats(5, 32, bytesOf<float>({-1.0F, 0.0F, 0.5F, 7.0F, NAN})),
         {"floats", {}, kGray16, {0, 0, 32768, 65535, 0}}},
        {floats(2, 16, shorts({0x3800, 0x4200})), {"half floats", {}, kGray16, {32768, 65535}}},
        {floats(2, 64, bytesOf<double>({0.25, 2})), {"doubles", {}, kGray16, {16384, 65535}}},
        {page(3, 8, 2, kBlack, {60, 128, 7, 0, 255, 9}, {kAlpha}),
         {"grey and alpha", {}, kRgba8, {60, 60, 60, 128, 7, 7, 7, 0, 255, 255, 255, 9}}},
        {page(1, 8, 2, kBlack, {50, 100}, {kMultiplied}), {"grey, multiplied", {}, kRgba8, {128, 128, 128, 100}}},
        {page(3, 8, 4, kRgb, {50, 25, 0, 100, 9, 8, 7, 0, 20, 10, 1, 255}, {kMultiplied}),
         {"multiplied", {}, kRgba8, {128, 64, 0, 100, 9, 8, 7, 0, 20, 10, 1, 255}}},
        {page(1, 8, 4, kRgb, {50, 25, 0, 100}, {EXTRASAMPLE_UNSPECIFIED}), {"selection", {}, kRgb8, {50, 25, 0, 255}}},
        {page(1, 16, 4, kRgb, shorts({1000, 500, 0, 20000}), {kMultiplied}),
         {"multiplied, 16 bits", {}, kRgba16, {3277, 1638, 0, 20000}}},
        {page(1, 8, 5, kRgb, {1, 2, 3, 99, 40}, {EXTRASAMPLE_UNSPECIFIED, kAlpha}),
         {"alpha behind a selection", {}, kRgba8, {1, 2, 3, 40}}},
        {page(2, 8, 4, PHOTOMETRIC_SEPARATED, {255, 0, 0, 0, 51, 102, 0, 51}),
         {"ink", {}, kRgb8, {0, 255, 255, 255, 163, 122, 204, 255}}},
        {page(1, 16, 4, PHOTOMETRIC_SEPARATED, shorts({51 * 257, 102 * 257, 0, 51 * 257})),
         {"ink, 16 bits", {}, kRgb16, {41942, 31457, 52428}}},
        {page(1, 16, 3, PHOTOMETRIC_CIELAB, shorts({33423, 37 * 256, 25 * 256})), {"Lab, 16 bits", {}, kRgb16, lab16}},
        {page(1, 8, 3, PHOTOMETRIC_CIELAB, {130, 37, 25}), {"Lab", {}, kRgb8, {185, 93, 81}}}, // L 51, a 37, b 25
        {page(1, 8, 3, PHOTOMETRIC_CIELAB, {153, 256 - 30, 20}), {"greenish Lab", {}, kRgb8, {94, 159, 108}}},
        {page(1, 8, 3, PHOTOMETRIC_ICCLAB, {130, 165, 153}), {"ICC Lab", {}, kRgb8, {185, 93, 81}}},
        {page(1, 16, 3, PHOTOMETRIC_ICCLAB, shorts({33293, 165 * 256, 153 * 256})),
         {"ICC Lab, 16 bits", {}, kRgb16, lab16}},
        {coarse, {"coarse chrominance", {}, kRgb8, {173, 76, 33, 255, 255, 176, 133, 255}}},
        {luminance, {"luminance", {}, kRgb8, {255, 255, 255, 255, 128, 128, 128, 255}}},
        {luv, {"luminance and chrominance", {}, kRgb8, {255, 255, 255, 255, 128, 128, 128, 255}}},
        {inJpeg, {"JPEG in TIFF", {}, kRgb8, {200, 90, 30, 255, 200}}},
    };
    const auto modelOf = [](const TestTiff &page) {
        return (page.photometric < kRgb && page.colorMap.empty()) || page.photometric == PHOTOMETRIC_LOGL
                   ? ColorModel::Gray
               : page.photometric == PHOTOMETRIC_SEPARATED                                        ? ColorModel::Cmyk
               : page.photometric == PHOTOMETRIC_CIELAB || page.photometric == PHOTOMETRIC_ICCLAB ? ColorModel::Lab
                                                                                                  : ColorModel::Rgb;
    };
    std::vector<Kind> kinds;
    for (auto [page, kind] : rows) {
        kind.bits = page.colorMap.empty() ? page.bits : 8;
        kind.model = modelOf(page);
        kind.tolerance = page.photometric > PHOTOMETRIC_SEPARATED ? 1.3 : 0; // through another space of colours
        const bool isSingle = page.height == 1;
        const std::vector<uint8_t> row = page.rows;
        for (; isSingle && page.height < 20; ++page.height)
            page.rows.insert(page.rows.end(), row.begin(), row.end());
        for (const auto &[tileSide, isPlanar] : {std::pair(0, false), {0, true}, {16, false}, {16, true}}) {
            if ((!isSingle && (tileSide || isPlanar)) || (isPlanar && page.bits != 8))
                continue;
            page.tileSide = tileSide;
            page.isPlanar = isPlanar;
            kind.file = tiff({page});
            kinds.push_back(kind);
        }
    }
    expectKinds(kinds);
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
        EXPECT_TRUE(samePixels(decodedEvenly(makePng(kind, 37, 41, rows)), expected)) << isInterlaced;
    }
    plain.orientation = ORIENTATION_RIGHTTOP; // told by the metadata, never applied here
    for (const auto &[tileSide, isPlanar] : {std::pair(0, false), {0, true}, {16, false}, {16, true}}) {
        plain.compression = COMPRESSION_LZW;
        plain.tileSide = tileSide;
        plain.isPlanar = isPlanar;
        EXPECT_TRUE(samePixels(decodedEvenly(tiff({plain})), expected)) << tileSide << " " << isPlanar;
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
    const auto [info, shown] = read(tiff({thumbnail, picture, mask, second}));
    EXPECT_EQ(info.frames, (std::vector<QSize>{QSize(3, 2), QSize(5, 1)}));
    EXPECT_EQ(samplesOf(shown.pixels, 3), (std::vector<int>{10, 20, 30}));
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

TEST_F(Kinds, OnlyAbsoluteDensitiesAreResolutions)
{
    const auto jpeg = [](int unit) {
        return makeJpeg({.densityUnit = unit, .density = 300}, 16, 16, std::vector<uint8_t>(16 * 16 * 3, 90));
    };
    const auto png = [](char unit) { // 11811 a metre
        return makePng({.colorType = PNG_COLOR_TYPE_GRAY,
                        .extraChunkType = "pHYs",
                        .extraChunk = QByteArray("\0\0\x2e\x23\0\0\x2e\x23", 8) + unit},
                       1, 1, {1});
    };
    const auto tiff = [this](int unit) {
        return this->tiff({{.samplesPerPixel = 1, .photometric = 1, .resolutionUnit = unit, .rows = {1}}});
    };
    for (const auto &[file, across, down] : {std::tuple(jpeg(0), 0, 0),
                                             {jpeg(1), 300, 300},
                                             {jpeg(2), 762, 762},
                                             {png(0), 0, 0},
                                             {png(1), 300, 300},
                                             {tiff(0), 0, 0},
                                             {tiff(RESUNIT_NONE), 0, 0},
                                             {tiff(RESUNIT_INCH), 300, 150},
                                             {tiff(RESUNIT_CENTIMETER), 762, 381}}) {
        const std::optional<QSizeF> dpi = infoOf(file).dpi;
        EXPECT_EQ(dpi.has_value(), across > 0);
        EXPECT_NEAR(dpi.value_or(QSizeF(0, 0)).width(), across, 0.02);
        EXPECT_NEAR(dpi.value_or(QSizeF(0, 0)).height(), down, 0.02);
    }
}

TEST_F(Kinds, OfPluginsComeAsTheyWereSaved)
{
    QImage photo = makePicture(45, 20, kRgb8);
    photo.setColorSpace(QColorSpace::AdobeRgb);
    for (const auto &[format, image] : {std::pair("bmp", photo),
                                        {"bmp", photo.convertToFormat(QImage::Format_Indexed8)},
                                        {"ppm", photo},
                                        {"ico", makePicture(45, 20, kRgba8)},
                                        {"webp", photo},
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
        EXPECT_EQ(info.format, format);
        if (info.format == "webp") {
            EXPECT_EQ(info.iccProfile, image.colorSpace().iccProfile());
            EXPECT_EQ(picture.iccProfile, info.iccProfile);
        }
    }
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
