#include "TestFiles.h"
#include "TestPictures.h"

#include <png.h>

namespace hazelmark {

using PngKinds = FolderTest;

TEST_F(PngKinds, GrayOfEveryDepthIsScaledToTheFullRange)
{
    for (const auto &[bitDepth, row, expected] : grayRows({{16, {0x12, 0x34, 0xff, 0xfe}, {0x1234, 0xfffe}}})) {
        const Read got =
            read(makePng({.colorType = PNG_COLOR_TYPE_GRAY, .bitDepth = bitDepth}, int(expected.size()), 1, row));
        expectGray(got.info, got.picture, bitDepth, expected);
        EXPECT_FALSE(got.info.hasAlpha);
    }
}

TEST_F(PngKinds, GrayWithAlphaComesWithEqualChannels)
{
    const Read got8 = read(makePng({.colorType = PNG_COLOR_TYPE_GRAY_ALPHA}, 2, 1, {50, 0, 60, 128}));
    ASSERT_EQ(got8.picture.pixels.format(), QImage::Format_RGBA8888);
    EXPECT_EQ(samplesOf(got8.picture.pixels, 8), (std::vector<int>{50, 50, 50, 0, 60, 60, 60, 128}));
    EXPECT_EQ(got8.info.colorModel, ColorModel::Gray);
    EXPECT_TRUE(got8.info.hasAlpha);
    const Read got16 = read(makePng({.colorType = PNG_COLOR_TYPE_GRAY_ALPHA, .bitDepth = 16}, 1, 1, {1, 2, 3, 4}));
    ASSERT_EQ(got16.picture.pixels.format(), QImage::Format_RGBA64);
    EXPECT_EQ(samplesOf(got16.picture.pixels, 4), (std::vector<int>{0x102, 0x102, 0x102, 0x304}));
}

TEST_F(PngKinds, PaletteWithAndWithoutTransparency)
{
    TestPng kind{.colorType = PNG_COLOR_TYPE_PALETTE, .bitDepth = 2};
    kind.palette = QByteArray("\x0a\x14\x1e\xff\x00\x80\x01\x02\x03", 9);
    const Read opaque = read(makePng(kind, 3, 1, {0b00011000}));
    ASSERT_EQ(opaque.picture.pixels.format(), QImage::Format_RGBX8888);
    EXPECT_EQ(samplesOf(opaque.picture.pixels, 12),
              (std::vector<int>{10, 20, 30, 255, 255, 0, 128, 255, 1, 2, 3, 255}));
    EXPECT_EQ(opaque.info.colorModel, ColorModel::Rgb);
    EXPECT_EQ(opaque.info.bitsPerChannel, 8);
    kind.transparency = QByteArray("\x00\x40", 2);
    const Read transparent = read(makePng(kind, 3, 1, {0b00011000}));
    ASSERT_EQ(transparent.picture.pixels.format(), QImage::Format_RGBA8888);
    EXPECT_EQ(samplesOf(transparent.picture.pixels, 12),
              (std::vector<int>{10, 20, 30, 0, 255, 0, 128, 64, 1, 2, 3, 255}));
    EXPECT_TRUE(transparent.info.hasAlpha);
}

TEST_F(PngKinds, OneTransparentColourBecomesAlpha)
{
    TestPng kind{.colorType = PNG_COLOR_TYPE_RGB};
    kind.transparency = QByteArray("\0\x01\0\x02\0\x03", 6);
    const QImage pixels = decoded(makePng(kind, 2, 1, {1, 2, 3, 1, 2, 4})).pixels;
    ASSERT_EQ(pixels.format(), QImage::Format_RGBA8888);
    EXPECT_EQ(samplesOf(pixels, 8), (std::vector<int>{1, 2, 3, 0, 1, 2, 4, 255}));
}

TEST_F(PngKinds, InterlacedGivesTheSamePixels)
{
    std::vector<uint8_t> rows;
    for (int i = 0; i < 19 * 13 * 3; ++i)
        rows.push_back(uint8_t(i * 7));
    TestPng kind{.colorType = PNG_COLOR_TYPE_RGB};
    const Read plain = read(makePng(kind, 19, 13, rows));
    kind.isInterlaced = true;
    EXPECT_TRUE(samePixels(read(makePng(kind, 19, 13, rows)).picture.pixels, plain.picture.pixels));
}

TEST_F(PngKinds, GammaChunkChangesNoPixel)
{
    TestPng kind{.colorType = PNG_COLOR_TYPE_RGB};
    kind.extraChunkType = "gAMA";
    kind.extraChunk = QByteArray("\x00\x01\x86\xa0", 4); // 1.0
    EXPECT_EQ(samplesOf(read(makePng(kind, 1, 1, {100, 50, 3})).picture.pixels, 4),
              (std::vector<int>{100, 50, 3, 255}));
}

TEST_F(PngKinds, ProfileIsKeptUnjudgedButNotABomb)
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
        EXPECT_TRUE(read(makePng(kind, 1, 1, {1, 2, 3})).info.iccProfile.isEmpty());
    }
}

TEST_F(PngKinds, OnlyMetricDensitiesAreResolutions)
{
    TestPng kind{.colorType = PNG_COLOR_TYPE_RGB};
    kind.extraChunkType = "pHYs";
    kind.extraChunk = QByteArray("\0\0\x2e\x23\0\0\x17\x12\x01", 9); // 11811 and 5906 a metre
    const std::optional<QSizeF> dpi = read(makePng(kind, 1, 1, {1, 2, 3})).info.dpi;
    ASSERT_TRUE(dpi);
    EXPECT_NEAR(dpi->width(), 300, 0.01);
    EXPECT_NEAR(dpi->height(), 150, 0.02);
    kind.extraChunk[8] = 0; // an aspect ratio
    EXPECT_FALSE(read(makePng(kind, 1, 1, {1, 2, 3})).info.dpi);
}

} // namespace hazelmark
