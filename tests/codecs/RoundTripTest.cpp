#include "Pictures.h"
#include "TestFiles.h"
#include "TestPictures.h"

#include <cmath>

namespace hazelmark {

using testing::drawn;

class RoundTrip : public FolderTest
{
protected:
    QImage rewritten(const QImage &pixels, WriteFormat format) const
    {
        return decoded(encoded(pixels, optionsFor(format))).pixels;
    }
};

TEST_F(RoundTrip, LosslessFormatsKeepEverySample)
{
    const std::vector<QImage::Format> all = {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64,
                                             QImage::Format_RGBA64};
    for (const auto &[fileFormat, formats] :
         {std::pair(WriteFormat::Png, all), {WriteFormat::Tiff, all}, {WriteFormat::Bmp, {all.front()}}}) {
        for (const QImage::Format format : formats) {
            // Widths with and without row padding, and the smallest pictures.
            for (const QSize size : {QSize(1, 1), QSize(3, 2), QSize(61, 40), QSize(64, 33)}) {
                const QImage pixels = makePicture(size.width(), size.height(), format);
                const auto [info, picture] = read(encoded(pixels, optionsFor(fileFormat)));
                EXPECT_TRUE(samePixels(picture.pixels, pixels)) << int(fileFormat);
                EXPECT_EQ(info.frames, std::vector<QSize>{size});
                EXPECT_EQ(info.hasAlpha, pixels.hasAlphaChannel());
                EXPECT_EQ(info.bitsPerChannel, pixels.pixelFormat().redSize());
            }
        }
    }
}

/// In several pieces.
TEST_F(RoundTrip, BmpIsTheFileThatQtWrites)
{
    QImage pixels = makePicture(701, 600, QImage::Format_RGB888);
    pixels.setDotsPerMeterX(11811);
    pixels.setDotsPerMeterY(5906);
    const EncodeOptions options = optionsFor(WriteFormat::Bmp, {.dpi = QSizeF(300, 150)});
    EXPECT_TRUE(encoded(pixels, options) == savedByQt(pixels, "bmp"));
}

TEST_F(RoundTrip, PngOfAPatternTakesLittleRoom)
{
    const auto sizeOf = [this](const QImage &pixels) { return encoded(pixels, optionsFor(WriteFormat::Png)).size(); };
    const QImage photo = makePicture(1000, 300, QImage::Format_RGBX8888);
    const QImage pattern =
        drawn(photo.size(), photo.format(), [&](int x, int y) { return photo.pixelColor(x % 90, y); });
    EXPECT_LT(4 * sizeOf(pattern), sizeOf(photo));
}

/// Blended and rounded once, checked against floating point for every colour and every alpha.
TEST_F(RoundTrip, JpegAndBmpLayTransparentPixelsOnWhiteAndRoundToNearest)
{
    const QImage blended = drawn({256, 256}, QImage::Format_RGBA8888, [](int x, int y) { return QColor(x, x, x, y); });
    const QImage onWhite = rewritten(blended, WriteFormat::Bmp);
    const QImage deepOnWhite = rewritten(blended.convertToFormat(QImage::Format_RGBA64), WriteFormat::Bmp);
    const QImage asJpeg = rewritten(blended, WriteFormat::Jpeg);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            ASSERT_EQ(onWhite.constScanLine(y)[4 * x], std::lround((x * y + 255.0 * (255 - y)) / 255));
            ASSERT_EQ(deepOnWhite.constScanLine(y)[4 * x], onWhite.constScanLine(y)[4 * x]);
            ASSERT_NEAR(asJpeg.constScanLine(y)[4 * x], onWhite.constScanLine(y)[4 * x], 3);
        }
    }
}

TEST_F(RoundTrip, GifDithersManyColoursCloseOnAverage)
{
    for (const QImage::Format format : {QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBX64}) {
        const QImage pixels = makePicture(120, 90, format);
        const QImage before = pixels.convertToFormat(QImage::Format_RGBA8888);
        const QImage after = rewritten(pixels, WriteFormat::Gif).convertToFormat(QImage::Format_RGBA8888);
        double sum = 0;
        for (qsizetype i = 0; i < before.sizeInBytes(); ++i) {
            const bool isOpaque = before.constBits()[i | 3] >= 128;
            ASSERT_EQ(after.constBits()[i | 3], isOpaque ? 255 : 0) << format << " " << i;
            sum += isOpaque && i % 4 < 3 ? std::abs(after.constBits()[i] - before.constBits()[i]) : 0;
        }
        EXPECT_LT(sum / (3.0 * 120 * 90), 12) << format;
    }
}

} // namespace hazelmark
