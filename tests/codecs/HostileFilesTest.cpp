#include "TestFiles.h"
#include "TestPictures.h"

#include <functional>

namespace hazelmark {

namespace {

struct HostileCase
{
    const char *name;
    std::function<QByteArray(const QString &scratchPath)> makeFile;
    /// Bytes at the end of the file without which the picture is still whole (a closing marker, what follows the
    /// pixels, the place of the next directory).
    int dispensableBytes = 0;
};

QByteArray encoded(WriteFormat format, QImage::Format pixels, const QString &path)
{
    MetadataBlocks metadata;
    metadata.exif = QByteArray("II*\0\x08\0\0\0\0\0\0\0\0\0", 14);
    metadata.xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
    metadata.iptc = QByteArray("\x1c\x02\x19\0\x04word", 9);
    if (format != WriteFormat::Bmp && format != WriteFormat::Gif)
        metadata.iccProfile = QByteArray(500, 'p');
    metadata.dpi = QSizeF(300, 300);
    if (!encodePicture(makePicture(48, 40, pixels), optionsFor(format, metadata), path))
        return {};
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray jpeg(
    TestJpeg::Colors colors, const std::function<void(TestJpeg &)> &adjust = [](TestJpeg &) {})
{
    TestJpeg kind;
    kind.colors = colors;
    adjust(kind);
    const int samplesPerPixel = colors == TestJpeg::Colors::Gray ? 1 : colors < TestJpeg::Colors::Cmyk ? 3 : 4;
    std::vector<uint8_t> samples(size_t(48 * 40 * samplesPerPixel));
    QRandomGenerator random(7);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = uint8_t(i / 40 + size_t(random.bounded(20)));
    return makeJpeg(kind, 48, 40, samples);
}

std::vector<HostileCase> hostileCases()
{
    using Colors = TestJpeg::Colors;
    return {
        {"Jpeg", [](const QString &path) { return encoded(WriteFormat::Jpeg, QImage::Format_RGBX8888, path); }, 2},
        {"JpegGray", [](const QString &) { return jpeg(Colors::Gray); }, 2},
        {"JpegYcck", [](const QString &) { return jpeg(Colors::Ycck); }, 2},
        {"JpegProgressive",
         [](const QString &) { return jpeg(Colors::YCbCr, [](TestJpeg &kind) { kind.isProgressive = true; }); }, 2},
        {"JpegRestarts",
         [](const QString &) { return jpeg(Colors::YCbCr, [](TestJpeg &kind) { kind.restartInterval = 2; }); }, 2},
        {"JpegArithmetic",
         [](const QString &) { return jpeg(Colors::YCbCr, [](TestJpeg &kind) { kind.isArithmetic = true; }); }},
        {"JpegSubsampled",
         [](const QString &) { return jpeg(Colors::YCbCr, [](TestJpeg &kind) { kind.isSubsampled = true; }); }, 2},
        {"Png8", [](const QString &path) { return encoded(WriteFormat::Png, QImage::Format_RGBX8888, path); }},
        {"Png16Alpha", [](const QString &path) { return encoded(WriteFormat::Png, QImage::Format_RGBA64, path); }},
        {"Tiff8", [](const QString &path) { return encoded(WriteFormat::Tiff, QImage::Format_RGBX8888, path); }, 4},
        {"Tiff16Alpha", [](const QString &path) { return encoded(WriteFormat::Tiff, QImage::Format_RGBA64, path); }, 4},
        {"Bmp", [](const QString &path) { return encoded(WriteFormat::Bmp, QImage::Format_RGBX8888, path); }},
        {"Gif", [](const QString &path) { return encoded(WriteFormat::Gif, QImage::Format_RGBA8888, path); }, 1},
    };
}

} // namespace

class HostileFiles : public FolderTest, public testing::WithParamInterface<HostileCase>
{
};

TEST_P(HostileFiles, CutOffAnywhereIsAFailureNeverAPartOfThePicture)
{
    const QByteArray file = GetParam().makeFile(pathOf(QStringLiteral("scratch")));
    ASSERT_FALSE(file.isEmpty());
    const auto whole = decodePicture(write(QStringLiteral("whole"), file));
    ASSERT_TRUE(whole) << whole.failure().sentence().toStdString();
    const qsizetype step = std::max<qsizetype>(1, file.size() / 700);
    qsizetype succeeded = 0;
    const QString path = write(QStringLiteral("cut"), file);
    for (qsizetype size = file.size() - 1; size >= 1; size -= size > file.size() - 50 ? 1 : step) {
        ASSERT_TRUE(QFile::resize(path, size));
        (void)readPictureInfo(path); // must not crash; headers may be whole
        const auto picture = decodePicture(path);
        if (!picture)
            continue;
        EXPECT_TRUE(samePixels(picture->pixels, whole->pixels)) << size;
        EXPECT_EQ(picture->iccProfile, whole->iccProfile) << size;
        ++succeeded;
    }
    EXPECT_LE(succeeded, GetParam().dispensableBytes);
}

/// A cheap fuzzer with a fixed seed: whatever the bytes, the decoder answers, and what it hands back is well-formed.
TEST_P(HostileFiles, FlippedBytesNeverCrash)
{
    const QByteArray file = GetParam().makeFile(pathOf(QStringLiteral("scratch")));
    QRandomGenerator random(42);
    for (int round = 0; round < 400; ++round) {
        QByteArray mutated = file;
        const int flips = 1 + random.bounded(4);
        for (int flip = 0; flip < flips; ++flip) {
            // Half of the flips go to the headers, where they do most.
            const qsizetype range = random.bounded(2) ? file.size() : std::min<qsizetype>(file.size(), 700);
            mutated[random.bounded(int(range))] = char(random.bounded(256));
        }
        const QString path = write(QStringLiteral("mutated"), mutated);
        const auto info = readPictureInfo(path);
        const auto picture = decodePicture(path);
        if (picture) {
            ASSERT_TRUE(info) << "decodes, but has no header";
            EXPECT_EQ(picture->pixels.size(), info->frames.at(0));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HostileFiles, testing::ValuesIn(hostileCases()),
                         [](const auto &info) { return info.param.name; });

} // namespace hazelmark
