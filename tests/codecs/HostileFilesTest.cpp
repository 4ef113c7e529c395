#include "TestFiles.h"
#include "TestPictures.h"

#include <functional>

namespace hazelmark {

namespace {

/// 48 x 40 pixels with all the metadata that the format takes.
QByteArray written(WriteFormat format, QImage::Format pixels)
{
    MetadataBlocks metadata;
    metadata.exif = QByteArray("II*\0\x08\0\0\0\0\0\0\0\0\0", 14);
    metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
    metadata.iptc = QByteArray("\x1c\x02\x19\0\x04word", 9);
    if (format != WriteFormat::Bmp && format != WriteFormat::Gif)
        metadata.iccProfile = QByteArray(500, 'p');
    metadata.dpi = QSizeF(300, 300);
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("written")));
    return encodePicture(makePicture(48, 40, pixels), optionsFor(format, metadata), file.fileName()) &&
                   file.open(QIODevice::ReadOnly)
               ? file.readAll()
               : QByteArray();
}

QByteArray jpeg(const TestJpeg &kind)
{
    const QByteArray noise = noiseBytes(qsizetype(48) * 40 * (kind.colors == TestJpeg::Colors::Ycck ? 4 : 3), 7);
    return makeJpeg(kind, 48, 40, {noise.begin(), noise.end()});
}

QByteArray saved(QImage::Format pixels, const char *format, int quality = -1)
{
    return savedByQt(makePicture(45, 20, pixels), format, quality);
}

struct HostileCase
{
    const char *name;
    std::function<QByteArray()> makeFile;
    /// Bytes at the end of the file without which the picture is still whole (a closing marker, what follows the
    /// pixels, the place of the next directory).
    int dispensableBytes = 0;
};

std::vector<HostileCase> hostileCases()
{
    constexpr auto kRgb = QImage::Format_RGBX8888;
    return {
        {"Jpeg", [] { return written(WriteFormat::Jpeg, kRgb); }, 2},
        {"JpegYcck", [] { return jpeg({.colors = TestJpeg::Colors::Ycck}); }, 2},
        {"JpegProgressive", [] { return jpeg({.isProgressive = true}); }, 2},
        {"JpegRestarts", [] { return jpeg({.restartInterval = 2}); }, 2},
        {"JpegArithmetic", [] { return jpeg({.isArithmetic = true}); }},
        {"Png16Alpha", [] { return written(WriteFormat::Png, QImage::Format_RGBA64); }},
        {"Tiff8", [] { return written(WriteFormat::Tiff, kRgb); }, 4},
        {"Bmp", [] { return written(WriteFormat::Bmp, kRgb); }},
        {"Gif", [] { return written(WriteFormat::Gif, QImage::Format_RGBA8888); }, 1},
        {"WebPLossless", [] { return saved(QImage::Format_RGBA8888, "webp", 100); }},
        {"WebPLossy", [] { return saved(kRgb, "webp", 80); }},
        {"Icon", [] { return saved(QImage::Format_RGBA8888, "ico"); }},
        {"Ppm", [] { return saved(kRgb, "ppm"); }},
    };
}

} // namespace

class HostileFiles : public FolderTest, public testing::WithParamInterface<HostileCase>
{
protected:
    void SetUp() override
    {
        m_file = GetParam().makeFile();
        if (m_file.isEmpty() && qstrncmp(GetParam().name, "WebP", 4) == 0)
            GTEST_SKIP() << "the plugin is not installed";
        ASSERT_FALSE(m_file.isEmpty());
    }

    QByteArray m_file;
};

TEST_P(HostileFiles, CutOffAnywhereIsAFailureNeverAPartOfThePicture)
{
    const Picture whole = decoded(m_file);
    const qsizetype step = std::max<qsizetype>(1, m_file.size() / 700);
    qsizetype succeeded = 0;
    const QString path = write(QStringLiteral("cut"), m_file);
    for (qsizetype size = m_file.size() - 1; size >= 1; size -= size > m_file.size() - 50 ? 1 : step) {
        ASSERT_TRUE(QFile::resize(path, size));
        (void)readPictureInfo(path); // must not crash; headers may be whole
        const auto picture = decodePicture(path);
        if (!picture)
            continue;
        EXPECT_TRUE(samePixels(picture->pixels, whole.pixels)) << size;
        EXPECT_EQ(picture->iccProfile, whole.iccProfile) << size;
        ++succeeded;
    }
    EXPECT_LE(succeeded, GetParam().dispensableBytes);
}

/// A cheap fuzzer with a fixed seed: whatever the bytes, the decoder answers, and what it hands back is well-formed.
TEST_P(HostileFiles, FlippedBytesNeverCrash)
{
    QRandomGenerator random(42);
    for (int round = 0; round < 400; ++round) {
        QByteArray mutated = m_file;
        const int flips = 1 + random.bounded(4);
        for (int flip = 0; flip < flips; ++flip) {
            // Half of the flips go to the headers, where they do most.
            const qsizetype range = random.bounded(2) ? m_file.size() : std::min<qsizetype>(m_file.size(), 700);
            mutated[random.bounded(int(range))] = char(random.bounded(256));
        }
        const QString path = write(QStringLiteral("mutated"), mutated);
        const auto info = readPictureInfo(path);
        const auto picture = decodePicture(path);
        if (picture) {
            ASSERT_TRUE(info) << "decodes, but has no header";
            EXPECT_EQ(picture->pixels.size(), info->frames.at(0)) << info->format.toStdString();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HostileFiles, testing::ValuesIn(hostileCases()),
                         [](const auto &info) { return info.param.name; });

} // namespace hazelmark
