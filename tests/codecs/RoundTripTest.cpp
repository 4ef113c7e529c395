#include "TestFiles.h"

#include <cmath>

namespace hazelmark {

namespace {

struct Lossless
{
    WriteFormat format;
    QImage::Format pixels;
};

std::string nameOf(const testing::TestParamInfo<Lossless> &info)
{
    const char *formats[] = {"Png", "Jpeg", "Bmp", "Tiff", "Gif"};
    const bool is16Bit = QImage::toPixelFormat(info.param.pixels).redSize() == 16;
    const bool hasAlpha = QImage::toPixelFormat(info.param.pixels).alphaUsage() == QPixelFormat::UsesAlpha;
    return std::string(formats[int(info.param.format)]) + (hasAlpha ? "Rgba" : "Rgb") + (is16Bit ? "16" : "8");
}

} // namespace

class LosslessRoundTrip : public FolderTest, public testing::WithParamInterface<Lossless>
{
};

TEST_P(LosslessRoundTrip, KeepsEverySample)
{
    // Widths with and without row padding, and the smallest pictures.
    for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(61, 40), QSize(64, 33)}) {
        const QImage pixels = makePicture(size.width(), size.height(), GetParam().pixels);
        const QString path = pathOf(QStringLiteral("picture"));
        const auto written = encodePicture(pixels, optionsFor(GetParam().format), path);
        ASSERT_TRUE(written) << written.failure().sentence().toStdString();
        const auto picture = decodePicture(path);
        ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
        EXPECT_TRUE(samePixels(picture->pixels, pixels));
        const auto info = readPictureInfo(path);
        ASSERT_TRUE(info);
        EXPECT_EQ(info->frames, std::vector<QSize>{size});
        EXPECT_EQ(info->hasAlpha, pixels.hasAlphaChannel());
        EXPECT_EQ(info->bitsPerChannel, pixels.pixelFormat().redSize());
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, LosslessRoundTrip,
                         testing::Values(Lossless{WriteFormat::Png, QImage::Format_RGBX8888},
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
};

TEST_F(RoundTrip, JpegKeepsColoursCloseAndChromaWhole)
{
    // Single saturated columns of red and blue: subsampled chroma would smear them over their neighbours.
    QImage pixels(64, 64, QImage::Format_RGBX8888);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            pixels.setPixel(x, y, x % 2 ? qRgb(200, 40, 40) : qRgb(40, 40, 200));
    }
    const QString path = pathOf(QStringLiteral("picture"));
    ASSERT_TRUE(encodePicture(pixels, optionsFor(WriteFormat::Jpeg), path));
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->pixels.format(), QImage::Format_RGBX8888);
    int worst = 0;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const QRgb a = pixels.pixel(x, y);
            const QRgb b = picture->pixels.pixel(x, y);
            worst = std::max(
                {worst, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
        }
    }
    EXPECT_LE(worst, 12);
}

TEST_F(RoundTrip, JpegAndBmpLayTransparentPixelsOnWhite)
{
    for (const auto &[file, format] :
         {std::pair(WriteFormat::Jpeg, QImage::Format_RGBA8888), std::pair(WriteFormat::Jpeg, QImage::Format_RGBA64),
          std::pair(WriteFormat::Bmp, QImage::Format_RGBA8888), std::pair(WriteFormat::Bmp, QImage::Format_RGBA64)}) {
        QImage pixels(48, 16, format);
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 48; ++x)
                pixels.setPixelColor(x, y, QColor(200, 100, 0, x < 16 ? 0 : x < 32 ? 128 : 255));
        }
        const QString path = pathOf(QStringLiteral("picture"));
        ASSERT_TRUE(encodePicture(pixels, optionsFor(file), path));
        const auto picture = decodePicture(path);
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->pixels.pixelColor(4, 8), QColor(255, 255, 255));
        const QColor half = picture->pixels.pixelColor(24, 8);
        EXPECT_NEAR(half.red(), 255 - 55 * 128 / 255.0, 2);
        EXPECT_NEAR(half.green(), 255 - 155 * 128 / 255.0, 2);
        EXPECT_NEAR(half.blue(), 255 - 255 * 128 / 255.0, 2);
        EXPECT_NEAR(picture->pixels.pixelColor(44, 8).blue(), 0, 2);
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
    const QString path = pathOf(QStringLiteral("picture"));
    ASSERT_TRUE(encodePicture(blended, optionsFor(WriteFormat::Bmp), path));
    const auto onWhite = decodePicture(path);
    ASSERT_TRUE(onWhite);
    ASSERT_TRUE(encodePicture(deep, optionsFor(WriteFormat::Bmp), path));
    const auto rounded = decodePicture(path);
    ASSERT_TRUE(rounded);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(onWhite->pixels.constScanLine(y)[4 * x], std::lround((x * y + 255.0 * (255 - y)) / 255));
            ASSERT_EQ(rounded->pixels.constScanLine(y)[4 * x], std::lround((256 * y + x) / 257.0));
        }
    }
}

TEST_F(RoundTrip, GifKeepsFewColoursExactlyAndOneBitOfAlpha)
{
    QImage pixels(40, 30, QImage::Format_RGBA8888);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x)
            pixels.setPixelColor(x, y, QColor(60 * (x / 10), 80 * (y / 10), 200, x < 10 ? 127 : x < 20 ? 128 : 255));
    }
    const QString path = pathOf(QStringLiteral("picture"));
    ASSERT_TRUE(encodePicture(pixels, optionsFor(WriteFormat::Gif), path));
    const auto info = readPictureInfo(path);
    ASSERT_TRUE(info);
    EXPECT_TRUE(info->hasAlpha);
    EXPECT_EQ(info->frames, std::vector<QSize>{QSize(40, 30)});
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->pixels.format(), QImage::Format_RGBA8888);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const QColor color = picture->pixels.pixelColor(x, y);
            ASSERT_EQ(color.alpha(), x < 10 ? 0 : 255);
            if (x < 10)
                continue;
            ASSERT_EQ(color.rgb(), QColor(60 * (x / 10), 80 * (y / 10), 200).rgb());
        }
    }
}

TEST_F(RoundTrip, GifDithersManyColoursCloseOnAverage)
{
    const QImage pixels = makePicture(120, 90, QImage::Format_RGBX8888);
    const QString path = pathOf(QStringLiteral("picture"));
    ASSERT_TRUE(encodePicture(pixels, optionsFor(WriteFormat::Gif), path));
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture);
    ASSERT_EQ(picture->pixels.format(), QImage::Format_RGBX8888);
    double sum = 0;
    for (int y = 0; y < 90; ++y) {
        for (int i = 0; i < 480; ++i)
            sum += std::abs(picture->pixels.constScanLine(y)[i] - pixels.constScanLine(y)[i]);
    }
    EXPECT_LT(sum / (90 * 480), 12);
}

TEST_F(RoundTrip, OtherImageFormatsAreConvertedFirst)
{
    const QImage gray = makePicture(30, 20, QImage::Format_Grayscale16);
    const QString path = pathOf(QStringLiteral("picture"));
    ASSERT_TRUE(encodePicture(gray, optionsFor(WriteFormat::Png), path));
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture);
    EXPECT_TRUE(samePixels(picture->pixels, gray.convertToFormat(QImage::Format_RGBX64)));
}

} // namespace hazelmark
