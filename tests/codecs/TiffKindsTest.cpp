#include "TestFiles.h"
#include "TestPictures.h"

#include <cmath>

#include <tiffio.h>

namespace hazelmark {

class TiffKinds : public FolderTest
{
protected:
    Read read(const std::vector<TestTiff> &pages) const
    {
        return FolderTest::read(makeTiff(pages, pathOf(QStringLiteral("scratch"))));
    }
    static TestTiff page(int width, int height, int samplesPerPixel, int photometric, std::vector<uint8_t> rows)
    {
        TestTiff page;
        page.width = width;
        page.height = height;
        page.samplesPerPixel = samplesPerPixel;
        page.photometric = photometric;
        page.rows = std::move(rows);
        return page;
    }
    template <typename T>
    static std::vector<uint8_t> bytesOf(const std::vector<T> &values)
    {
        const auto *bytes = reinterpret_cast<const uint8_t *>(values.data());
        return std::vector<uint8_t>(bytes, bytes + values.size() * sizeof(T));
    }
};

TEST_F(TiffKinds, EveryLayoutOfTheSamplesGivesTheSamePixels)
{
    std::vector<uint8_t> rows;
    for (int i = 0; i < 37 * 41 * 3; ++i)
        rows.push_back(uint8_t(i * 11 + i / 100));
    TestTiff plain = page(37, 41, 3, PHOTOMETRIC_RGB, rows);
    const Read expected = read({plain});
    ASSERT_EQ(expected.picture.pixels.format(), QImage::Format_RGBX8888);
    EXPECT_EQ(samplesOf(expected.picture.pixels, 8), (std::vector<int>{0, 11, 22, 255, 33, 44, 55, 255}));
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS, COMPRESSION_ADOBE_DEFLATE}) {
        for (const int tileSide : {0, 16}) {
            for (const bool isPlanar : {false, true}) {
                TestTiff other = plain;
                other.compression = compression;
                other.tileSide = tileSide;
                other.isPlanar = isPlanar;
                other.orientation = ORIENTATION_RIGHTTOP; // told by the metadata, never applied here
                EXPECT_TRUE(samePixels(read({other}).picture.pixels, expected.picture.pixels))
                    << compression << " " << tileSide << " " << isPlanar;
            }
        }
    }
}

TEST_F(TiffKinds, GrayOfEveryDepthIsScaledToTheFullRange)
{
    for (const auto &[bits, row, expected] :
         grayRows({{12, {0x00, 0x0f, 0xff, 0x80, 0x00}, {0, 65535, 32776}},
                   {16, bytesOf<uint16_t>({0x1234, 0xfffe}), {0x1234, 0xfffe}},
                   {32, bytesOf<uint32_t>({0x12345678, 0xffffffff}), {0x1234, 0xffff}}})) {
        TestTiff gray = page(int(expected.size()), 1, 1, PHOTOMETRIC_MINISBLACK, row);
        gray.bits = bits;
        const Read black = read({gray});
        expectGray(black.info, black.picture, bits, expected);
        gray.photometric = PHOTOMETRIC_MINISWHITE;
        std::vector<int> inverted = expected;
        for (int &value : inverted)
            value = (bits > 8 ? 65535 : 255) - value;
        EXPECT_EQ(samplesOf(read({gray}).picture.pixels, int(expected.size())), inverted) << bits;
    }
}

TEST_F(TiffKinds, FloatsAreClamped)
{
    TestTiff floats = page(5, 1, 1, PHOTOMETRIC_MINISBLACK, bytesOf<float>({-1.0F, 0.0F, 0.5F, 7.0F, NAN}));
    floats.bits = 32;
    floats.sampleFormat = SAMPLEFORMAT_IEEEFP;
    EXPECT_EQ(samplesOf(read({floats}).picture.pixels, 5), (std::vector<int>{0, 0, 32768, 65535, 0}));
    floats.bits = 64;
    floats.rows = bytesOf<double>({-1.0, 1.0, 0.25, HUGE_VAL, double(NAN)});
    EXPECT_EQ(samplesOf(read({floats}).picture.pixels, 5), (std::vector<int>{0, 65535, 16384, 65535, 0}));
}

TEST_F(TiffKinds, AlphaComesStraight)
{
    TestTiff rgba = page(3, 1, 4, PHOTOMETRIC_RGB, {50, 25, 0, 100, 9, 8, 7, 0, 200, 100, 1, 255});
    rgba.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    const Read straight = read({rgba});
    ASSERT_EQ(straight.picture.pixels.format(), QImage::Format_RGBA8888);
    EXPECT_TRUE(straight.info.hasAlpha);
    EXPECT_EQ(samplesOf(straight.picture.pixels, 12), (std::vector<int>{50, 25, 0, 100, 9, 8, 7, 0, 200, 100, 1, 255}));
    rgba.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
    EXPECT_EQ(samplesOf(read({rgba}).picture.pixels, 12),
              (std::vector<int>{128, 64, 0, 100, 9, 8, 7, 0, 200, 100, 1, 255}));
    rgba.extraSamples = {EXTRASAMPLE_UNSPECIFIED}; // some selection, not the picture's alpha
    const Read opaque = read({rgba});
    EXPECT_EQ(opaque.picture.pixels.format(), QImage::Format_RGBX8888);
    EXPECT_FALSE(opaque.info.hasAlpha);
}

TEST_F(TiffKinds, GrayWithAlphaComesWithEqualChannels)
{
    TestTiff gray = page(2, 1, 2, PHOTOMETRIC_MINISBLACK, bytesOf<uint16_t>({1000, 30000, 7, 65535}));
    gray.bits = 16;
    gray.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    const Read got = read({gray});
    ASSERT_EQ(got.picture.pixels.format(), QImage::Format_RGBA64);
    EXPECT_EQ(samplesOf(got.picture.pixels, 8), (std::vector<int>{1000, 1000, 1000, 30000, 7, 7, 7, 65535}));
    EXPECT_EQ(got.info.colorModel, ColorModel::Gray);
}

TEST_F(TiffKinds, PaletteMapsOfBothScalesAreRead)
{
    TestTiff palette = page(3, 1, 1, PHOTOMETRIC_PALETTE, {0b00011011});
    palette.bits = 2;
    const std::vector<int> expected = {10, 20, 30, 255, 255, 0, 128, 255, 1, 2, 3, 255};
    for (const int factor : {1, 256, 257}) {
        palette.colorMap.clear();
        for (const int value : {10, 255, 1, 0, 20, 0, 2, 0, 30, 128, 3, 0})
            palette.colorMap.push_back(uint16_t(value * factor));
        const Read got = read({palette});
        ASSERT_EQ(got.picture.pixels.format(), QImage::Format_RGBX8888);
        EXPECT_EQ(samplesOf(got.picture.pixels, 12), expected) << factor;
        EXPECT_EQ(got.info.bitsPerChannel, 8);
        EXPECT_EQ(got.info.colorModel, ColorModel::Rgb);
    }
}

TEST_F(TiffKinds, InkBecomesSrgb)
{
    TestTiff cmyk = page(3, 1, 4, PHOTOMETRIC_SEPARATED, {0, 0, 0, 0, 255, 0, 0, 0, 51, 102, 0, 51});
    const Read got = read({cmyk});
    EXPECT_EQ(samplesOf(got.picture.pixels, 12),
              (std::vector<int>{255, 255, 255, 255, 0, 255, 255, 255, 163, 122, 204, 255}));
    EXPECT_TRUE(got.picture.convertedToSrgb);
    EXPECT_EQ(got.info.colorModel, ColorModel::Cmyk);
    cmyk.bits = 16;
    cmyk.rows = bytesOf<uint16_t>({0, 0, 0, 0, 65535, 0, 0, 0, 13107, 26214, 0, 13107});
    EXPECT_EQ(samplesOf(read({cmyk}).picture.pixels, 12),
              (std::vector<int>{65535, 65535, 65535, 65535, 0, 65535, 65535, 65535, 41942, 31457, 52428, 65535}));
}

/// The encodings of one Lab colour, against the colour's sRGB values by the published formulas (Bradford, D50 to D65).
TEST_F(TiffKinds, LabInAllItsEncodingsBecomesSrgb)
{
    const std::vector<double> expected8 = {185.3, 93.5, 81.1}; // of L 51, a 37, b 25
    const int L = 51;
    const int a = 37;
    const int b = 25;
    const auto l8 = uint8_t(std::lround(L * 2.55));
    const struct
    {
        int photometric;
        int bits;
        std::vector<uint8_t> row;
    } cases[] = {
        {PHOTOMETRIC_CIELAB, 8, {l8, uint8_t(a), uint8_t(b)}},
        {PHOTOMETRIC_ICCLAB, 8, {l8, uint8_t(a + 128), uint8_t(b + 128)}},
        {PHOTOMETRIC_CIELAB, 16, bytesOf<uint16_t>({uint16_t(L * 655.35), uint16_t(a * 256), uint16_t(b * 256)})},
        {PHOTOMETRIC_ICCLAB, 16,
         bytesOf<uint16_t>({uint16_t(L * 652.8), uint16_t((a + 128) * 256), uint16_t((b + 128) * 256)})},
    };
    for (const auto &[photometric, bits, row] : cases) {
        TestTiff lab = page(1, 1, 3, photometric, row);
        lab.bits = bits;
        const Read got = read({lab});
        EXPECT_EQ(got.info.colorModel, ColorModel::Lab);
        EXPECT_TRUE(got.picture.convertedToSrgb);
        const std::vector<int> samples = samplesOf(got.picture.pixels, 4);
        for (size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(bits == 16 ? samples[i] / 257.0 : samples[i], expected8[i], 1.01) << photometric << " " << bits;
    }
}

TEST_F(TiffKinds, PagesThatAreCopiesOrMasksAreNoFrames)
{
    TestTiff thumbnail = page(2, 1, 1, PHOTOMETRIC_MINISBLACK, {1, 2});
    thumbnail.subfileType = FILETYPE_REDUCEDIMAGE;
    TestTiff picture = page(3, 2, 1, PHOTOMETRIC_MINISBLACK, {10, 20, 30, 40, 50, 60});
    TestTiff mask = page(3, 2, 1, PHOTOMETRIC_MASK, {0, 0});
    mask.bits = 1;
    mask.subfileType = FILETYPE_MASK;
    TestTiff second = page(5, 1, 3, PHOTOMETRIC_RGB, std::vector<uint8_t>(15, 9));
    second.subfileType = FILETYPE_PAGE;
    const Read got = read({thumbnail, picture, mask, second});
    EXPECT_EQ(got.info.frames, (std::vector<QSize>{QSize(3, 2), QSize(5, 1)}));
    EXPECT_EQ(got.info.colorModel, ColorModel::Gray);
    EXPECT_EQ(samplesOf(got.picture.pixels, 3), (std::vector<int>{10, 20, 30}));
    // A file of nothing but copies still shows its first.
    EXPECT_EQ(read({thumbnail}).info.frames, std::vector<QSize>{QSize(2, 1)});
}

/// The first page of a camera raw file is a small preview: handing it out would pass for the photo.
TEST_F(TiffKinds, CameraRawFilesAreRefused)
{
    const QString path = pathOf(QStringLiteral("raw"));
    makeTiff({page(2, 1, 1, PHOTOMETRIC_MINISBLACK, {1, 2})}, path);
    TIFF *tiff = TIFFOpen(QFile::encodeName(path).constData(), "r+");
    const uint8_t version[] = {1, 4, 0, 0};
    TIFFSetField(tiff, TIFFTAG_DNGVERSION, version);
    TIFFRewriteDirectory(tiff);
    TIFFClose(tiff);
    EXPECT_EQ(reasonFor(contentOf(path)), Failure::Reason::UnsupportedFormat);
}

TEST_F(TiffKinds, SubsampledChromaIsReadUnturned)
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
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
    ASSERT_EQ(picture->pixels.format(), QImage::Format_RGBX8888);
    const std::vector<int> row = samplesOf(picture->pixels, 16);
    for (size_t x = 0; x < 4; ++x)
        EXPECT_NEAR(row[4 * x], 10 * int(x + 1), 1);
}

TEST_F(TiffKinds, ResolutionIsToldInDotsPerInch)
{
    TestTiff gray = page(1, 1, 1, PHOTOMETRIC_MINISBLACK, {1});
    EXPECT_EQ(read({gray}).info.dpi, std::nullopt);
    gray.resolution = 300;
    EXPECT_EQ(read({gray}).info.dpi, QSizeF(300, 300));
    gray.resolutionUnit = RESUNIT_CENTIMETER;
    EXPECT_NEAR(read({gray}).info.dpi->width(), 762, 0.01);
    gray.resolutionUnit = RESUNIT_NONE;
    EXPECT_EQ(read({gray}).info.dpi, std::nullopt);
}

} // namespace hazelmark
