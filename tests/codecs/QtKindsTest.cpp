#include "TestFiles.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageWriter>
#include <QtEndian>

namespace hazelmark {

class QtKinds : public FolderTest
{
protected:
    static QByteArray saved(const QImage &image, const char *format, int quality = -1)
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        EXPECT_TRUE(image.save(&buffer, format, quality)) << format;
        return bytes;
    }
    static bool canWrite(const char *format) { return QImageWriter::supportedImageFormats().contains(format); }
    /// No shorter file is a picture.
    void expectCutsToFail(const QByteArray &file, qsizetype dispensableBytes = 0)
    {
        const QString path = write(QStringLiteral("cut"), file);
        for (qsizetype size = file.size() - 1 - dispensableBytes; size > 0; size -= 1 + file.size() / 300) {
            ASSERT_TRUE(QFile::resize(path, size));
            (void)readPictureInfo(path);
            EXPECT_FALSE(decodePicture(path)) << size << " of " << file.size();
        }
    }
    /// Random bytes among the first `range` change; nothing is to be seen but that the program lives.
    void expectFlipsToDoNoHarm(const QByteArray &file, int range)
    {
        QRandomGenerator random(42);
        for (int round = 0; round < 300; ++round) {
            QByteArray mutated = file;
            for (int flip = random.bounded(4); flip >= 0; --flip)
                mutated[random.bounded(range)] = char(random.bounded(256));
            const QString path = write(QStringLiteral("flipped"), mutated);
            (void)readPictureInfo(path);
            (void)decodePicture(path);
        }
    }
};

TEST_F(QtKinds, BmpOfEveryDepth)
{
    const QImage rgb = makePicture(45, 20, QImage::Format_RGBX8888);
    const QByteArray plain = saved(rgb, "bmp");
    EXPECT_EQ(infoOf(plain).format, "bmp");
    EXPECT_TRUE(samePixels(decoded(plain).pixels, rgb));
    expectCutsToFail(plain);
    expectFlipsToDoNoHarm(plain, 60);
    const QImage indexed = rgb.convertToFormat(QImage::Format_Indexed8);
    EXPECT_TRUE(samePixels(decoded(saved(indexed, "bmp")).pixels, indexed.convertToFormat(QImage::Format_RGBX8888)));
    const QImage mono = rgb.convertToFormat(QImage::Format_Mono);
    const QByteArray monoFile = saved(mono, "bmp");
    EXPECT_TRUE(samePixels(decoded(monoFile).pixels, mono.convertToFormat(QImage::Format_RGBX8888)));
    expectCutsToFail(monoFile);
}

TEST_F(QtKinds, RunLengthBmpIsWholeOrRefused)
{
    // Eight-bit run-length coding of a 6 × 2 picture: a run of 6; 4 literals and a run of 2; the end mark.
    const QByteArray pixels("\x06\x01\0\0\0\x04\x01\x02\x01\x02\x02\x01\0\x01", 14);
    QByteArray file("BM\0\0\0\0\0\0\0\0\x42\0\0\0\x28\0\0\0\x06\0\0\0\x02\0\0\0\x01\0\x08\0\x01\0\0\0", 34);
    file += QByteArray("\0\0\0\0\x13\x0b\0\0\x13\x0b\0\0\x03\0\0\0\0\0\0\0", 20); // size, 72 dpi, 3 colours
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
    const auto little = [](quint32 value) {
        QByteArray bytes(4, '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    };
    // A header of 124 bytes; 2 × 1 pixels of 24 bits; the profile behind them.
    QByteArray header = little(124) + little(2) + little(1) + QByteArray("\x01\0\x18\0", 4);
    header += QByteArray(124 - header.size(), '\0');
    header.replace(56, 4, "DEBM"); // the colour space: an embedded profile
    header.replace(112, 4, little(124 + 8));
    header.replace(116, 4, little(quint32(profile.size())));
    const QByteArray file = "BM" + little(0) + little(0) + little(14 + 124) + header +
                            QByteArray("\x01\x02\x03\x04\x05\x06\0\0", 8) + profile;
    EXPECT_EQ(infoOf(file).iccProfile, profile);
    const Picture picture = decoded(file);
    EXPECT_EQ(picture.iccProfile, profile);
    EXPECT_EQ(picture.pixels.pixelColor(1, 0), QColor(6, 5, 4));
}

TEST_F(QtKinds, WebPWithProfileAlphaAndCuts)
{
    if (!canWrite("webp"))
        GTEST_SKIP() << "the plugin is not installed";
    const QImage rgba = makePicture(40, 30, QImage::Format_RGBA8888);
    QImage lossless = rgba;
    lossless.setColorSpace(QColorSpace::AdobeRgb);
    const QByteArray file = saved(lossless, "webp", 100);
    const PictureInfo info = infoOf(file);
    EXPECT_EQ(info.format, "webp");
    EXPECT_TRUE(info.hasAlpha);
    EXPECT_EQ(info.frames, std::vector<QSize>{QSize(40, 30)});
    EXPECT_EQ(info.iccProfile, lossless.colorSpace().iccProfile());
    const Picture picture = decoded(file);
    EXPECT_EQ(picture.iccProfile, info.iccProfile);
    EXPECT_EQ(picture.pixels.format(), QImage::Format_RGBA8888);
    expectCutsToFail(file);
    expectFlipsToDoNoHarm(file, int(file.size()));
    const QByteArray opaque = saved(makePicture(40, 30, QImage::Format_RGBX8888), "webp", 80);
    EXPECT_FALSE(infoOf(opaque).hasAlpha);
    EXPECT_EQ(decoded(opaque).pixels.format(), QImage::Format_RGBX8888);
    expectCutsToFail(opaque);
}

TEST_F(QtKinds, IconListsTheSizesOfAllItsPictures)
{
    // Two pictures, both as PNG files within the icon.
    const QImage small = makePicture(16, 16, QImage::Format_RGBA8888);
    const QByteArray first = saved(small, "png");
    const QByteArray second = saved(makePicture(256, 200, QImage::Format_RGBA8888), "png");
    QByteArray file("\0\0\x01\0\x02\0", 6);
    const auto addEntry = [&file](int width, int height, const QByteArray &picture, qsizetype offset) {
        QByteArray entry(16, '\0');
        entry[0] = char(width);
        entry[1] = char(height);
        entry[4] = 1;
        entry[6] = 32;
        qToLittleEndian(quint32(picture.size()), entry.data() + 8);
        qToLittleEndian(quint32(offset), entry.data() + 12);
        file += entry;
    };
    addEntry(16, 16, first, 38);
    addEntry(0, 200, second, 38 + first.size());
    file += first + second;
    const PictureInfo info = infoOf(file);
    EXPECT_EQ(info.format, "ico");
    EXPECT_EQ(info.frames, (std::vector<QSize>{QSize(16, 16), QSize(256, 200)}));
    EXPECT_TRUE(info.hasAlpha);
    const QImage pixels = decoded(file).pixels;
    ASSERT_EQ(pixels.size(), small.size());
    EXPECT_EQ(pixels.format(), QImage::Format_RGBA8888);
    EXPECT_EQ(pixels.pixel(12, 5), small.pixel(12, 5));
    expectCutsToFail(file);
    expectFlipsToDoNoHarm(file, 38); // the directory
}

TEST_F(QtKinds, PortableMapsAndXbm)
{
    const QImage gray = makePicture(21, 9, QImage::Format_Grayscale8);
    const QByteArray pgm = saved(gray, "pgm");
    EXPECT_EQ(infoOf(pgm).colorModel, ColorModel::Gray);
    EXPECT_TRUE(samePixels(decoded(pgm).pixels, gray));
    expectCutsToFail(pgm);
    const QImage rgb = makePicture(21, 9, QImage::Format_RGBX8888);
    const QByteArray ppm = saved(rgb, "ppm");
    EXPECT_TRUE(samePixels(decoded(ppm).pixels, rgb));
    expectCutsToFail(ppm);
    expectFlipsToDoNoHarm(ppm, 20);
    const QByteArray xbm = saved(rgb.convertToFormat(QImage::Format_Mono), "xbm");
    EXPECT_EQ(decoded(xbm).pixels.size(), rgb.size());
    expectCutsToFail(xbm, 3); // the closing brace, semicolon and line end
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
