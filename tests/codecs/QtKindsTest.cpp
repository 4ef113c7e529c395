#include "TestFiles.h"
#include "TestPictures.h"

#include <QColorSpace>

namespace hazelmark {

using QtKinds = FolderTest;

TEST_F(QtKinds, BmpOfEveryDepth)
{
    const QImage rgb = makePicture(45, 20, QImage::Format_RGBX8888);
    const auto [info, picture] = read(savedByQt(rgb, "bmp"));
    EXPECT_EQ(info.format, "bmp");
    EXPECT_TRUE(samePixels(picture.pixels, rgb));
    const QImage indexed = rgb.convertToFormat(QImage::Format_Indexed8);
    EXPECT_TRUE(
        samePixels(decoded(savedByQt(indexed, "bmp")).pixels, indexed.convertToFormat(QImage::Format_RGBX8888)));
    const QImage mono = rgb.convertToFormat(QImage::Format_Mono);
    EXPECT_TRUE(samePixels(decoded(savedByQt(mono, "bmp")).pixels, mono.convertToFormat(QImage::Format_RGBX8888)));
}

TEST_F(QtKinds, RunLengthBmpIsWholeOrRefused)
{
    // Eight-bit run-length coding of a 6 × 2 picture: a run of 6; 4 literals and a run of 2; the end mark.
    const QByteArray pixels("\x06\x01\0\0\0\x04\x01\x02\x01\x02\x02\x01\0\x01", 14);
    QByteArray file("BM\0\0\0\0\0\0\0\0\x42\0\0\0\x28\0\0\0\x06\0\0\0\x02\0\0\0\x01\0\x08\0\x01\0\0\0", 34);
    file += QByteArray("\x0e\0\0\0\x13\x0b\0\0\x13\x0b\0\0\x03\0\0\0\0\0\0\0", 20); // size, 72 dpi, 3 colours
    file += QByteArray("\0\0\0\0\x10\x20\x30\0\x40\x50\x60\0", 12);
    const QImage image = decoded(file + pixels).pixels;
    ASSERT_EQ(image.size(), QSize(6, 2));
    EXPECT_EQ(image.pixelColor(0, 1), QColor(0x30, 0x20, 0x10));
    EXPECT_EQ(image.pixelColor(1, 0), QColor(0x60, 0x50, 0x40));
    EXPECT_EQ(image.pixelColor(5, 0), QColor(0x30, 0x20, 0x10));
    const std::optional<QSizeF> dpi = infoOf(file + pixels).dpi;
    ASSERT_TRUE(dpi);
    EXPECT_NEAR(dpi->width(), 72, 0.01);
    EXPECT_EQ(reasonFor(file + pixels.left(9)), Failure::Reason::Truncated);
    EXPECT_EQ(reasonFor(file), Failure::Reason::Truncated);
}

TEST_F(QtKinds, BmpProfileIsKept)
{
    const QByteArray profile = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    // A header of 124 bytes; 2 × 1 pixels of 24 bits; the profile behind them.
    QByteArray header = littleEndian(124) + littleEndian(2) + littleEndian(1) + QByteArray("\x01\0\x18\0", 4);
    header += QByteArray(124 - header.size(), '\0');
    header.replace(56, 4, "DEBM"); // the colour space: an embedded profile
    header.replace(112, 4, littleEndian(124 + 8));
    header.replace(116, 4, littleEndian(quint32(profile.size())));
    const QByteArray file = "BM" + littleEndian(0) + littleEndian(0) + littleEndian(14 + 124) + header +
                            QByteArray("\x01\x02\x03\x04\x05\x06\0\0", 8) + profile;
    const auto [info, picture] = read(file);
    EXPECT_EQ(info.iccProfile, profile);
    EXPECT_EQ(picture.iccProfile, profile);
    EXPECT_EQ(picture.pixels.pixelColor(1, 0), QColor(6, 5, 4));
}

TEST_F(QtKinds, WebPWithProfileAlphaAndCuts)
{
    const QImage rgba = makePicture(40, 30, QImage::Format_RGBA8888);
    QImage lossless = rgba;
    lossless.setColorSpace(QColorSpace::AdobeRgb);
    const QByteArray file = savedByQt(lossless, "webp", 100);
    if (file.isEmpty())
        GTEST_SKIP() << "the plugin is not installed";
    const auto [info, picture] = read(file);
    EXPECT_EQ(info.format, "webp");
    EXPECT_TRUE(info.hasAlpha);
    EXPECT_EQ(info.frames, std::vector<QSize>{QSize(40, 30)});
    EXPECT_EQ(info.iccProfile, lossless.colorSpace().iccProfile());
    EXPECT_EQ(picture.iccProfile, info.iccProfile);
    EXPECT_EQ(picture.pixels.format(), QImage::Format_RGBA8888);
    const QByteArray opaque = savedByQt(makePicture(40, 30, QImage::Format_RGBX8888), "webp", 80);
    EXPECT_FALSE(infoOf(opaque).hasAlpha);
    EXPECT_EQ(decoded(opaque).pixels.format(), QImage::Format_RGBX8888);
}

TEST_F(QtKinds, IconListsTheSizesOfAllItsPictures)
{
    // Two pictures, both as PNG files within the icon.
    const QImage small = makePicture(16, 16, QImage::Format_RGBA8888);
    const QByteArray large = savedByQt(makePicture(256, 200, QImage::Format_RGBA8888), "png");
    const auto [info, picture] = read(makeIcon({savedByQt(small, "png"), large}));
    EXPECT_EQ(info.format, "ico");
    EXPECT_EQ(info.frames, (std::vector<QSize>{QSize(16, 16), QSize(256, 200)}));
    EXPECT_TRUE(info.hasAlpha);
    EXPECT_TRUE(samePixels(picture.pixels, small));
}

TEST_F(QtKinds, PortableMaps)
{
    const QImage gray = makePicture(21, 9, QImage::Format_Grayscale8);
    const auto [info, picture] = read(savedByQt(gray, "pgm"));
    EXPECT_EQ(info.colorModel, ColorModel::Gray);
    EXPECT_TRUE(samePixels(picture.pixels, gray));
    const QImage rgb = makePicture(21, 9, QImage::Format_RGBX8888);
    EXPECT_TRUE(samePixels(decoded(savedByQt(rgb, "ppm")).pixels, rgb));
}

TEST_F(QtKinds, DrawingsAndGuessesAreNoPictures)
{
    EXPECT_EQ(
        reasonFor("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><rect width='5' height='5'/></svg>"),
        Failure::Reason::NotAPicture);
    EXPECT_EQ(reasonFor(QByteArray("\0\0\x05\x05zzzzz", 9)), Failure::Reason::NotAPicture);       // as WBMP would begin
    EXPECT_EQ(reasonFor(QByteArray("\0\0\x02\0\0\0\0\0\0\0", 10)), Failure::Reason::NotAPicture); // a cursor of nothing
}

} // namespace hazelmark
