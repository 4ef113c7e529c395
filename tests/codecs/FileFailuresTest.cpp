#include "AvailableMemory.h"
#include "TestFiles.h"
#include "TestPictures.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

using Reason = Failure::Reason;

class FileFailures : public FolderTest
{
protected:
    void expectBoth(const QString &path, Reason reason)
    {
        const auto info = readPictureInfo(path);
        const auto picture = decodePicture(path);
        ASSERT_FALSE(info);
        ASSERT_FALSE(picture);
        EXPECT_EQ(int(info.failure().reason), int(reason)) << info.failure().sentence().toStdString();
        EXPECT_EQ(int(picture.failure().reason), int(reason)) << picture.failure().sentence().toStdString();
        EXPECT_EQ(info.failure().path, path);
    }
};

TEST_F(FileFailures, WhatIsNoReadableFileIsNamed)
{
    expectBoth(pathOf(QStringLiteral("missing.jpg")), Reason::NoSuchFile);
    expectBoth(pathOf(QStringLiteral("missing/picture.jpg")), Reason::NoSuchFile);
    ASSERT_TRUE(QDir(pathOf({})).mkdir(QStringLiteral("folder.jpg")));
    expectBoth(pathOf(QStringLiteral("folder.jpg")), Reason::IsFolder);
    expectBoth(write(QStringLiteral("empty.png"), {}), Reason::Empty);
    const QString pipe = pathOf(QStringLiteral("pipe.jpg"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    expectBoth(pipe, Reason::NotARegularFile);
    ASSERT_TRUE(QFile::link(pathOf(QStringLiteral("nowhere")), pathOf(QStringLiteral("link.jpg"))));
    expectBoth(pathOf(QStringLiteral("link.jpg")), Reason::NoSuchFile);
}

TEST_F(FileFailures, FileWithoutReadPermissionIsNotReadable)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    const QString path = write(QStringLiteral("secret.jpg"), "x");
    ASSERT_TRUE(QFile::setPermissions(path, QFile::WriteOwner));
    expectBoth(path, Reason::NotReadable);
}

TEST_F(FileFailures, ContentThatIsNoPictureIsNotOneWhateverTheName)
{
    expectBoth(write(QStringLiteral("text.jpg"), "This is no photo.\n"), Reason::NotAPicture);
    expectBoth(write(QStringLiteral("zeros.png"), QByteArray(5000, '\0')), Reason::NotAPicture);
    expectBoth(write(QStringLiteral("byte.gif"), "G"), Reason::NotAPicture);
    expectBoth(write(QStringLiteral("page.bmp"), "<html><body>GIF89a</body></html>"), Reason::NotAPicture);
}

TEST_F(FileFailures, ContentDecidesNotTheName)
{
    const QByteArray png = encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(WriteFormat::Png));
    const QString path = write(QStringLiteral("really-a-png.jpg"), png);
    const auto info = readPictureInfo(path);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->format, "png");
    EXPECT_TRUE(decodePicture(path));
}

namespace {

QByteArray pngHeader(quint32 side)
{
    return QByteArray("\x89PNG\r\n\x1a\n", 8) +
           pngChunk("IHDR", bigEndian(side) + bigEndian(side) + QByteArray("\x08\x02\0\0\0", 5)) +
           QByteArray("\0\0\0\x01IDAT\0\0\0\0\0", 13);
}

QByteArray tiffHeader(quint32 width, quint32 height, quint32 bits = 8, quint32 samplesPerPixel = 1)
{
    QByteArray directory("II*\0\x08\0\0\0\x08\0", 10);
    for (const auto &[tag, type, value] : {std::tuple(256u, 4u, width),
                                           {257u, 4u, height},
                                           {258u, 3u, bits},
                                           {259u, 3u, 1u},
                                           {262u, 3u, 1u},
                                           {273u, 4u, 8u},
                                           {277u, 3u, samplesPerPixel},
                                           {279u, 4u, 100u}})
        directory += tiffEntry(tag, type, 1, value);
    return directory + littleEndian(0);
}

QByteArray bmpHeader(quint32 side)
{
    return "BM" + littleEndian(154) + littleEndian(0) + littleEndian(54) + littleEndian(40) + littleEndian(side) +
           littleEndian(side) + littleEndian(1, 2) + littleEndian(24, 2) + QByteArray(24, '\0') + QByteArray(100, 'x');
}

QByteArray icoHeader(quint32 side)
{
    return QByteArray("\0\0\x01\0\x01\0\0\0\0\0\x01\0\x20\0", 14) + littleEndian(200) + littleEndian(22) +
           pngHeader(side) + QByteArray(200, 'x');
}

QByteArray gifHeader(quint32 side)
{
    return "GIF89a" + littleEndian(side, 2) + littleEndian(side, 2) +
           QByteArray("\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0", 14) + littleEndian(1, 2) + littleEndian(1, 2) +
           QByteArray("\0\x02\x02\x44\x01\0;", 7);
}

/// A frame header between the start and a scan's.
QByteArray jpegHeader(quint32 side)
{
    const QByteArray sides = bigEndian(side).right(2) + bigEndian(side).right(2);
    return QByteArray("\xff\xd8\xff\xc0\0\x0b\x08", 7) + sides + QByteArray("\x01\x01\x11\0", 4) +
           QByteArray("\xff\xda\0\x08\x01\x01\0\0\x3f\0", 10) + QByteArray(50, 'x');
}

} // namespace

TEST_F(FileFailures, HeadersThatClaimMoreThanAGigapixelAreRefusedBeforeAnythingIsAllocated)
{
    for (const QByteArray &file : {pngHeader(100000), tiffHeader(100000, 100000), bmpHeader(100000), icoHeader(100000),
                                   gifHeader(60000), jpegHeader(60000), jpegHeader(65535)})
        expectBoth(write(QStringLiteral("huge"), file), Reason::TooLarge);
    for (const QByteArray &file : {pngHeader(0x7fffffff), bmpHeader(0x7fffffff)})
        expectBoth(write(QStringLiteral("huger"), file), Reason::TooLarge);
}

/// Just below the limit the header alone must not cost the memory of the pixels that are not there.
TEST_F(FileFailures, LargeClaimWithoutDataFails)
{
    for (const QByteArray &file : {pngHeader(30000), tiffHeader(30000, 30000), bmpHeader(30000), jpegHeader(30000)}) {
        const QString path = write(QStringLiteral("large"), file);
        const auto info = readPictureInfo(path);
        EXPECT_TRUE(info) << info.failure().sentence().toStdString();
        EXPECT_FALSE(decodePicture(path));
    }
}

/// What the memory cannot hold is refused by its headers alone, whatever follows them.
TEST_F(FileFailures, PictureForWhichThereIsNoMemoryIsNotDecoded)
{
    constexpr int kSide = 1000;
    constexpr qint64 kBitmap = qint64(kSide) * kSide * 4;
    const QImage pixels = makePicture(kSide, kSide, QImage::Format_RGBX8888);
    const std::vector<uint8_t> samples(kBitmap * 3 / 4, 99);
    for (const auto &[file, needed] :
         {std::pair(encoded(pixels, optionsFor(WriteFormat::Png)), 2 * kBitmap),
          {encoded(pixels, optionsFor(WriteFormat::Jpeg)), 2 * kBitmap},
          {makeJpeg({.isProgressive = true}, kSide, kSide, samples), kBitmap + 3 * 2 * kBitmap / 4},
          {encoded(pixels, optionsFor(WriteFormat::Tiff)), 2 * kBitmap},
          {encoded(pixels, optionsFor(WriteFormat::Gif)), 2 * kBitmap},
          {encoded(pixels, optionsFor(WriteFormat::Bmp)), 2 * kBitmap},
          {icoHeader(kSide), 2 * kBitmap}}) {
        const QString path = write(QStringLiteral("picture"), file);
        const auto reason = [&](qint64 memory) {
            const MemoryCap cap(memory);
            const auto picture = decodePicture(path);
            return picture ? std::nullopt : std::optional(picture.failure().reason);
        };
        EXPECT_EQ(reason(needed * 99 / 100), Reason::OutOfMemory) << path.toStdString();
        EXPECT_NE(reason(needed * 101 / 100 + 64 * 1024), Reason::OutOfMemory);
        const MemoryCap cap(0);
        EXPECT_TRUE(readPictureInfo(path)) << "headers alone take none";
    }
    // A row of gigabytes in a picture of few pixels is there to exhaust the memory.
    EXPECT_EQ(reasonFor(tiffHeader(1000000, 1, 32, 60000)), Reason::OutOfMemory);
}

TEST(Failure, SentenceIsOneLineThatNamesTheFileAndTheReason)
{
    const Failure failure{Reason::Truncated, QStringLiteral("/a/b.jpg"), QStringLiteral("premature\n end")};
    EXPECT_EQ(failure.sentence().toStdString(), "/a/b.jpg: its picture data is cut off (premature end).");
}

} // namespace hazelmark
