#include "TestFiles.h"
#include "TestPictures.h"

namespace hazelmark {

namespace {

/// Pages of 1 × 1 grey pixel; each directory leads to the next, the last to `end`. Directories begin at `start`.
QByteArray tiffPages(int count, quint32 start, quint32 end, quint32 lastTag, quint32 valueSize)
{
    QByteArray directories;
    const quint32 size = 2 + 9 * 12 + 4;
    for (int page = 1; page <= count; ++page) {
        directories += littleEndian(9, 2) + tiffEntry(256, 4, 1, 1) + tiffEntry(257, 4, 1, 1) +
                       tiffEntry(258, 3, 1, 8) + tiffEntry(259, 3, 1, 1) + tiffEntry(262, 3, 1, 1) +
                       tiffEntry(273, 4, 1, 8) + tiffEntry(278, 4, 1, 1) + tiffEntry(279, 4, 1, 1) +
                       tiffEntry(lastTag, 7, valueSize, 8) +
                       littleEndian(page < count ? start + quint32(page) * size : end);
    }
    return directories;
}

} // namespace

/// Small files that would keep a reader busy for minutes or fill its memory, and their harmless relatives.
class Bombs : public FolderTest
{
protected:
    /// The file with `count` times `part` at `offset`.
    static QByteArray stuffed(const QByteArray &file, qsizetype offset, const QByteArray &part, int count)
    {
        return file.left(offset) + part.repeated(count) + file.mid(offset);
    }
    QByteArray photo(WriteFormat format) const
    {
        return encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(format));
    }
};

TEST_F(Bombs, JpegHeaderOfThousandsOfSegmentsOrMegabytesOfFillerIsRefused)
{
    constexpr qsizetype kBehindStart = 2;
    const QByteArray file = photo(WriteFormat::Jpeg);
    const QByteArray empty("\xff\xe2\0\2", 4);
    decoded(stuffed(file, kBehindStart, empty, 500));
    EXPECT_EQ(reasonFor(stuffed(file, kBehindStart, empty, 200'000)), Failure::Reason::Damaged);
    EXPECT_EQ(reasonFor(stuffed(file, kBehindStart, "\xff", 40'000'000)), Failure::Reason::Damaged);
}

TEST_F(Bombs, PngHeaderOfThousandsOfChunksIsRefused)
{
    constexpr qsizetype kBehindHeader = 33;
    const QByteArray file = photo(WriteFormat::Png);
    decoded(stuffed(file, kBehindHeader, pngChunk("abCd", "x"), 500));
    EXPECT_EQ(reasonFor(stuffed(file, kBehindHeader, pngChunk("abCd", {}), 100'000)), Failure::Reason::Damaged);
}

TEST_F(Bombs, GifWithMegabytesOfEmptyBlocksIsRefused)
{
    const QByteArray file = photo(WriteFormat::Gif);
    const qsizetype frame = file.indexOf(QByteArray(",\0\0\0\0", 5));
    ASSERT_GT(frame, 0);
    decoded(stuffed(file, frame, QByteArray("\x21\xfe\1x\0", 5), 500));
    EXPECT_EQ(reasonFor(stuffed(file, frame, QByteArray("\x21\xfe\0", 3), 1'000'000)), Failure::Reason::Damaged);
}

TEST_F(Bombs, TiffPagesAreListedWithoutTheirValuesAndLoopsEnd)
{
    constexpr quint32 kProfile = 34675;
    constexpr quint32 kValueSize = 8 << 20;
    constexpr quint32 kStart = 8 + kValueSize;
    const QByteArray head = "II*" + QByteArray(1, '\0') + littleEndian(kStart) + QByteArray(kValueSize, 'v');
    EXPECT_EQ(infoOf(head + tiffPages(5000, kStart, kStart, kProfile, kValueSize)).frames.size(), 5000u);
    EXPECT_EQ(infoOf(head + tiffPages(2, kStart, 0, kProfile, 100)).iccProfile, QByteArray(100, 'v'));
}

TEST_F(Bombs, LaterPageOfMoreThanAGigapixelIsNotListed)
{
    constexpr quint32 kStart = 16;
    QByteArray file =
        "II*" + QByteArray(1, '\0') + littleEndian(kStart) + QByteArray(8, 'v') + tiffPages(2, kStart, 0, 34675, 4);
    const QByteArray width = tiffEntry(256, 4, 1, 1);
    file.replace(file.lastIndexOf(width), 2 * width.size(),
                 tiffEntry(256, 4, 1, 0x7fffffff) + tiffEntry(257, 4, 1, 0x7fffffff));
    EXPECT_EQ(infoOf(file).frames, std::vector<QSize>{QSize(1, 1)});
}

TEST_F(Bombs, LayersInATiffTagAreNotRead)
{
    constexpr quint32 kLayers = 0x935c;
    constexpr quint32 kValueSize = 200 << 20;
    constexpr quint32 kStart = 8 + kValueSize;
    const QString path = write(QStringLiteral("layers"), "II*" + QByteArray(1, '\0') + littleEndian(kStart));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(kStart) && file.seek(kStart));
    file.write(tiffPages(1, kStart, 0, kLayers, kValueSize));
    file.close();
    const auto picture = decodePicture(path);
    ASSERT_TRUE(picture) << picture.failure().sentence().toStdString();
    EXPECT_EQ(picture->pixels.size(), QSize(1, 1));
}

} // namespace hazelmark
