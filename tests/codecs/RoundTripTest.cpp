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
                                         Lossless{WriteFormat::Png, QImage::Format_RGBA64}),
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

TEST_F(RoundTrip, JpegLaysTransparentPixelsOnWhite)
{
    for (const QImage::Format format : {QImage::Format_RGBA8888, QImage::Format_RGBA64}) {
        QImage pixels(48, 16, format);
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 48; ++x)
                pixels.setPixelColor(x, y, QColor(200, 100, 0, x < 16 ? 0 : x < 32 ? 128 : 255));
        }
        const QString path = pathOf(QStringLiteral("picture"));
        ASSERT_TRUE(encodePicture(pixels, optionsFor(WriteFormat::Jpeg), path));
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
