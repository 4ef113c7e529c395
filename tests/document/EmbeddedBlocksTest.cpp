#include "EmbeddedBlocks.h"

#include "SamplePhotos.h"
#include "ZlibStream.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QByteArray number(quint32 value, int bytes, bool isBigEndian = true)
{
    QByteArray result(4, '\0');
    if (!isBigEndian) {
        qToLittleEndian(value, result.data());
        return result.left(bytes);
    }
    qToBigEndian(value, result.data());
    return result.right(bytes);
}

QByteArray segment(char marker, const QByteArray &data)
{
    return QByteArray("\xff") + marker + number(quint32(data.size() + 2), 2) + data;
}

QByteArray chunk(const QByteArray &type, const QByteArray &data)
{
    return number(quint32(data.size()), 4) + type + data + QByteArray(4, '\0'); // nobody checks the sum here
}

const QByteArray kPngSignature("\x89PNG\r\n\x1a\n", 8);
const QByteArray kTiffHead("MM\0*\0\0\0\x08", 8);
const char kApp1 = char(0xe1);
const char kApp13 = char(0xed);

} // namespace

TEST(EmbeddedBlocks, JpegBlocksAreJoinedFromTheirSegments)
{
    const QTemporaryDir folder;
    const QByteArray digits(32, 'A');
    const QByteArray extension = QByteArray("http://ns.adobe.com/xmp/extension/", 35) + digits + number(10, 4);
    const QByteArray foreign =
        QByteArray("http://ns.adobe.com/xmp/extension/", 35) + QByteArray(32, 'B') + number(3, 4);
    const QByteArray resource = QByteArray("8BIM\x04\x04\0\0\0\0\0\x06", 12) + "\x1c\x02\x19";
    const QByteArray file = QByteArray("\xff\xd8") + segment(kApp1, QByteArray("Exif\0\0", 6) + kTiffHead) +
                            segment(kApp1, QByteArray("Exif\0\0", 6) + "continued") +
                            segment(kApp1, QByteArray("Exif\0\0", 6) + kTiffHead + "a second block") +
                            segment(kApp1, QByteArray("http://ns.adobe.com/xap/1.0/", 29) + "main " + digits) +
                            segment(kApp1, foreign + number(0, 4) + "xyz") +
                            segment(kApp1, extension + number(0, 4) + "01234") +
                            segment(kApp1, extension + number(5, 4) + "56789") +
                            segment(kApp13, QByteArray("Photoshop 3.0", 14) + resource) + QByteArray("\xff") +
                            segment(kApp13, QByteArray("Photoshop 3.0", 14) + QByteArray("\0\x01z", 3)) +
                            segment(char(0xda), "scan") + segment(kApp1, QByteArray("Exif\0\0", 6) + kTiffHead);
    const EmbeddedBlocks blocks = readEmbeddedBlocks(writeBytes(folder, QStringLiteral("a.jpg"), file), "jpeg");
    EXPECT_EQ(blocks.exif, kTiffHead + "continued");
    EXPECT_EQ(blocks.xmp, "main " + digits);
    EXPECT_EQ(blocks.extendedXmp, "0123456789");
    EXPECT_EQ(blocks.iptc, QByteArray("\x1c\x02\x19\0\x01z", 6));
}

TEST(EmbeddedBlocks, PngTextsOfOlderProgramsAreRead)
{
    const QTemporaryDir folder;
    const QByteArray profile = "\nexif\n      14\n" + (QByteArray("Exif\0\0", 6) + kTiffHead).toHex() + "\n";
    const QByteArray xmpProfile = "\nxmp\n       3\n" + QByteArray("xmp").toHex() + "\n";
    const QByteArray texts = chunk("tEXt", QByteArray("Comment\0hello", 13)) +
                             chunk("zTXt", QByteArray("Raw profile type exif\0\0", 23) + deflateZlib(profile)) +
                             chunk("tEXt", QByteArray("Raw profile type xmp\0", 21) + xmpProfile);
    const QByteArray end = chunk("IEND", {});
    EmbeddedBlocks blocks =
        readEmbeddedBlocks(writeBytes(folder, QStringLiteral("a.png"), kPngSignature + texts + end), "png");
    EXPECT_EQ(blocks.exif, kTiffHead);
    EXPECT_EQ(blocks.xmp, "xmp");

    // The proper chunks come first, wherever they stand.
    const QByteArray proper =
        chunk("eXIf", kTiffHead + "proper") +
        chunk("iTXt", QByteArray("XML:com.adobe.xmp\0\x01\0en\0\0", 24) + deflateZlib("proper xmp"));
    blocks =
        readEmbeddedBlocks(writeBytes(folder, QStringLiteral("b.png"), kPngSignature + texts + proper + end), "png");
    EXPECT_EQ(blocks.exif, kTiffHead + "proper");
    EXPECT_EQ(blocks.xmp, "proper xmp");
}

TEST(EmbeddedBlocks, WebpChunksAreRead)
{
    const QTemporaryDir folder;
    const QByteArray body = "WEBPVP8 " + number(3, 4, false) + QByteArray("abc\0", 4) + "EXIF" + number(14, 4, false) +
                            QByteArray("Exif\0\0", 6) + kTiffHead + "XMP " + number(3, 4, false) + "xmp";
    const QByteArray file = "RIFF" + number(quint32(body.size()), 4, false) + body;
    const EmbeddedBlocks blocks = readEmbeddedBlocks(writeBytes(folder, QStringLiteral("a.webp"), file), "webp");
    EXPECT_EQ(blocks.exif, kTiffHead);
    EXPECT_EQ(blocks.xmp, "xmp");
}

TEST(EmbeddedBlocks, AGifPacketIsReadFromBetweenItsBlocks)
{
    const QTemporaryDir folder;
    QByteArray trailer("\x01", 1);
    for (int length = 0xff; length >= 0; --length)
        trailer += char(length);
    trailer += '\0';
    const QByteArray packet = xmpPacket("<xmp:Rating>4</xmp:Rating>");
    const QByteArray file = QByteArray("GIF89a\x01\0\x01\0\x80\0\0", 13) + QByteArray(6, 'c') +
                            QByteArray("\x21\xf9\x04\0\0\0\0\0", 8) + "\x21\xff\x0bXMP DataXMP" + packet + trailer +
                            QByteArray("\x2c\0\0\0\0\x01\0\x01\0\0\x02\x02\x4c\x01\0\x3b", 16);
    EXPECT_EQ(readEmbeddedBlocks(writeBytes(folder, QStringLiteral("a.gif"), file), "gif").xmp, packet);
}

} // namespace hazelmark
