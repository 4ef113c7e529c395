#include "TestFiles.h"
#include "TestPictures.h"

namespace hazelmark {

using HostileFiles = FolderTest;

TEST_F(HostileFiles, CutOffAnywhereIsAFailureNeverAPartOfThePicture)
{
    constexpr auto kRgb = QImage::Format_RGBX8888;
    constexpr auto kRgba = QImage::Format_RGBA8888;
    constexpr int kForeign = 40;
    // With all the metadata that the format takes.
    const auto written = [this](WriteFormat format, QImage::Format pixels) {
        MetadataBlocks metadata{.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>", .dpi = QSizeF(300, 300)};
        metadata.exif = QByteArray("II*\0\x08\0\0\0\0\0\0\0\0\0", 14);
        metadata.iptc = QByteArray("\x1c\x02\x19\0\x04word", 9);
        if (format != WriteFormat::Bmp && format != WriteFormat::Gif)
            metadata.iccProfile = QByteArray(500, 'p');
        return encoded(makePicture(48, 40, pixels), optionsFor(format, metadata));
    };
    const auto saved = [](QImage::Format pixels, const char *format, int quality = -1) {
        return savedByQt(makePicture(45, 20, pixels), format, quality);
    };
    const QByteArray noise = noiseBytes(48 * 40 * 4, 7);
    const std::vector<uint8_t> samples(noise.begin(), noise.end());
    const struct
    {
        const char *what;
        QByteArray file;
        /// Bytes at the end of the file without which the picture is still whole (a closing marker, what follows the
        /// pixels, the place of the next directory).
        int dispensableBytes = 0;
        /// Of the looks that are taken: the decoder program is a process for each, and comes to harm by itself.
        int share = 1;
    } rows[] = {
        {"JPEG", written(WriteFormat::Jpeg, kRgb), 2},
        {"JPEG of ink", makeJpeg({.colors = TestJpeg::Colors::Ycck}, 48, 40, samples), 2},
        {"progressive JPEG", makeJpeg({.isProgressive = true}, 48, 40, samples), 2},
        {"JPEG with restarts", makeJpeg({.restartInterval = 2}, 48, 40, samples), 2},
        {"PNG", written(WriteFormat::Png, QImage::Format_RGBA64)},
        {"TIFF", written(WriteFormat::Tiff, kRgb), 4},
        {"BMP", written(WriteFormat::Bmp, kRgb), 0, kForeign},
        {"GIF", written(WriteFormat::Gif, kRgba), 1},
        {"lossless WebP", saved(kRgba, "webp", 100), 0, kForeign},
        {"WebP", saved(kRgb, "webp", 80), 0, kForeign},
        {"icon", saved(kRgba, "ico"), 0, kForeign},
        {"PPM", saved(kRgb, "ppm"), 0, kForeign},
    };
    for (const auto &[what, file, dispensableBytes, share] : rows) {
        if (file.isEmpty() && QByteArray(what).endsWith("WebP"))
            continue; // the plugin is not installed
        const Picture whole = decoded(file);
        const qsizetype step = std::max<qsizetype>(1, file.size() * share / 700);
        qsizetype succeeded = 0;
        const QString path = write(QStringLiteral("cut"), file);
        for (qsizetype size = file.size() - 1; size >= 1; size -= size > file.size() - 50 / share ? 1 : step) {
            ASSERT_TRUE(QFile::resize(path, size));
            (void)readPictureInfo(path); // must not crash; headers may be whole
            const auto picture = decodePicture(path);
            if (!picture)
                continue;
            EXPECT_TRUE(samePixels(picture->pixels, whole.pixels)) << what << " " << size;
            EXPECT_EQ(picture->iccProfile, whole.iccProfile) << what << " " << size;
            ++succeeded;
        }
        EXPECT_LE(succeeded, dispensableBytes) << what;
    }
}

} // namespace hazelmark
