#include "Pictures.h"
#include "TestFiles.h"

#include <cmath>

namespace hazelmark {

using testing::drawn;

namespace {

struct Lossless
{
    WriteFormat format;
    QImage::Format pixels;
};

std::string nameOf(const ::testing::TestParamInfo<Lossless> &info)
{
    const char *formats[] = {"Png", "Jpeg", "Bmp", "Tiff", "Gif"};
    const bool is16Bit = QImage::toPixelFormat(info.param.pixels).redSize() == 16;
    const bool hasAlpha = QImage::toPixelFormat(info.param.pixels).alphaUsage() == QPixelFormat::UsesAlpha;
    return std::string(formats[int(info.param.format)]) + (hasAlpha ? "Rgba" : "Rgb") + (is16Bit ? "16" : "8");
}

} // namespace

class LosslessRoundTrip : public FolderTest, public ::testing::WithParamInterface<Lossless>
{
};

TEST_P(LosslessRoundTrip, KeepsEverySample)
{
    // Widths with and without row padding, and the smallest pictures.
    for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(61, 40), QSize(64, 33)}) {
        const QImage pixels = makePicture(size.width(), size.height(), GetParam().pixels);
        const auto [info, picture] = read(encoded(pixels, optionsFor(GetParam().format)));
        EXPECT_TRUE(samePixels(picture.pixels, pixels));
        EXPECT_EQ(info.frames, std::vector<QSize>{size});
        EXPECT_EQ(info.hasAlpha, pixels.hasAlphaChannel());
        EXPECT_EQ(info.bitsPerChannel, pixels.pixelFormat().redSize());
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, LosslessRoundTrip,
                         ::testing::Values(Lossless{WriteFormat::Png, QImage::Format_RGBX8888},
                                           Lossless{WriteFormat::Png, QImage::Format_RGBA8888},
                                           Lossless{WriteFormat::Png, QImage::Format_RGBX64},
                                           Lossless{WriteFormat::Png, QImage::Format_RGBA64},
                                           Lossless{WriteFormat::Tiff, QImage::Format_RGBX8888},
                                           Lossless{WriteFormat::Tiff, QImage::Format_RGBA8888},
                                           Lossless{WriteFormat::Tiff, QImage::Format_RGBX64},
                                           Lossless{WriteFormat::Tiff, QImage::Format_RGBA64},
                                           Lossless{WriteFormat::Bmp, QImage::Format_RGBX8888}),
                         nameOf);

class RoundTrip : public FolderTest
{
protected:
    QImage rewritten(const QImage &pixels, WriteFormat format) const
    {
        return decoded(encoded(pixels, optionsFor(format))).pixels;
    }
};

TEST_F(RoundTrip, JpegKeepsColoursCloseAndChromaWhole)
{
    // Single saturated columns of red and blue: subsampled chroma would smear them over their neighbours.
    const QImage pixels = drawn({64, 64}, QImage::Format_RGBX8888,
                                [](int x, int) { return x % 2 ? QColor(200, 40, 40) : QColor(40, 40, 200); });
    const QImage written = rewritten(pixels, WriteFormat::Jpeg);
    ASSERT_EQ(written.format(), QImage::Format_RGBX8888);
    for (qsizetype i = 0; i < pixels.sizeInBytes(); ++i)
        ASSERT_NEAR(written.constBits()[i], pixels.constBits()[i], 12) << i;
}

TEST_F(RoundTrip, JpegAndBmpLayTransparentPixelsOnWhite)
{
    for (const WriteFormat file : {WriteFormat::Jpeg, WriteFormat::Bmp}) {
        for (const QImage::Format format : {QImage::Format_RGBA8888, QImage::Format_RGBA64}) {
            const QImage written = rewritten(drawn({48, 16}, format,
                                                   [](int x, int) {
                                                       return QColor(200, 100, 0, x < 16 ? 0 : x < 32 ? 128 : 255);
                                                   }),
                                             file);
            EXPECT_EQ(written.pixelColor(4, 8), QColor(255, 255, 255));
            const QColor half = written.pixelColor(24, 8);
            EXPECT_NEAR(half.red(), 255 - 55 * 128 / 255.0, 2);
            EXPECT_NEAR(half.green(), 255 - 155 * 128 / 255.0, 2);
            EXPECT_NEAR(half.blue(), 255 - 255 * 128 / 255.0, 2);
            EXPECT_NEAR(written.pixelColor(44, 8).blue(), 0, 2);
        }
    }
}

/// Blended and rounded once, checked against floating point for every colour and many alphas.
TEST_F(RoundTrip, BmpRoundsBlendsAndDeepSamplesToNearest)
{
    QImage blended(256, 256, QImage::Format_RGBA8888);
    QImage deep(256, 256, QImage::Format_RGBX64);
    for (int y = 0; y < 256; ++y) {
        uchar *row = blended.scanLine(y);
        auto *deepRow = reinterpret_cast<quint16 *>(deep.scanLine(y));
        for (int x = 0; x < 256; ++x) {
            row[4 * x] = row[4 * x + 1] = row[4 * x + 2] = uchar(x);
            row[4 * x + 3] = uchar(y);
            deepRow[4 * x] = deepRow[4 * x + 1] = deepRow[4 * x + 2] = quint16(256 * y + x);
            deepRow[4 * x + 3] = 65535;
        }
    }
    const QImage onWhite = rewritten(blended, WriteFormat::Bmp);
    const QImage rounded = rewritten(deep, WriteFormat::Bmp);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(onWhite.constScanLine(y)[4 * x], std::lround((x * y + 255.0 * (255 - y)) / 255));
            ASSERT_EQ(rounded.constScanLine(y)[4 * x], std::lround((256 * y + x) / 257.0));
        }
    }
}

TEST_F(RoundTrip, GifKeepsFewColoursExactlyAndOneBitOfAlpha)
{
    const auto color = [](int x, int y, int alpha) { return QColor(60 * (x / 10), 80 * (y / 10), 200, alpha); };
    const QImage pixels = drawn({40, 30}, QImage::Format_RGBA8888, [&](int x, int y) {
        return color(x, y, x < 10 ? 127 : x < 20 ? 128 : 255);
    });
    const auto [info, picture] = read(encoded(pixels, optionsFor(WriteFormat::Gif)));
    EXPECT_TRUE(info.hasAlpha);
    EXPECT_EQ(info.frames, std::vector<QSize>{QSize(40, 30)});
    EXPECT_TRUE(samePixels(picture.pixels, drawn({40, 30}, QImage::Format_RGBA8888, [&](int x, int y) {
                               return x < 10 ? picture.pixels.pixelColor(0, 0) : color(x, y, 255);
                           })));
    EXPECT_EQ(picture.pixels.pixelColor(0, 0).alpha(), 0);
}

TEST_F(RoundTrip, GifDithersManyColoursCloseOnAverage)
{
    const QImage pixels = makePicture(120, 90, QImage::Format_RGBX8888);
    const QImage written = rewritten(pixels, WriteFormat::Gif);
    ASSERT_EQ(written.format(), QImage::Format_RGBX8888);
    double sum = 0;
    for (qsizetype i = 0; i < pixels.sizeInBytes(); ++i)
        sum += std::abs(written.constBits()[i] - pixels.constBits()[i]);
    EXPECT_LT(sum / double(pixels.sizeInBytes()), 12);
}

TEST_F(RoundTrip, OtherImageFormatsAreConvertedFirst)
{
    const QImage gray = makePicture(30, 20, QImage::Format_Grayscale16);
    EXPECT_TRUE(samePixels(rewritten(gray, WriteFormat::Png), gray.convertToFormat(QImage::Format_RGBX64)));
}

} // namespace hazelmark
