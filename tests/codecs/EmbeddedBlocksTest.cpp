#include "EmbeddedBlocks.h"

#include "TestFiles.h"
#include "TestPictures.h"
#include "ZlibStream.h"

namespace hazelmark {

namespace {

QByteArray segment(char marker, const QByteArray &data)
{
    return QByteArray("\xff") + marker + bigEndian(quint32(data.size() + 2)).right(2) + data;
}

const QByteArray kPngSignature("\x89PNG\r\n\x1a\n", 8);
const QByteArray kTiffHead("MM\0*\0\0\0\x08", 8);
const char kApp1 = char(0xe1);
const char kApp13 = char(0xed);

} // namespace

class EmbeddedBlocksOf : public FolderTest
{
protected:
    EmbeddedBlocks blocksOf(const QByteArray &file, const QByteArray &format) const
    {
        const auto source = SourceFile::open(write(QStringLiteral("file"), file));
        return readEmbeddedBlocks(**source, format).value_or(EmbeddedBlocks());
    }
};

TEST_F(EmbeddedBlocksOf, JpegBlocksAreJoinedFromTheirSegments)
{
    const QByteArray digits(32, 'A');
    const QByteArray lead("http://ns.adobe.com/xmp/extension/", 35);
    const QByteArray extension = lead + digits + bigEndian(10);
    const QByteArray foreign = lead + QByteArray(32, '0') + bigEndian(3);
    const QByteArray exif = segment(kApp1, QByteArray("Exif\0\0", 6) + kTiffHead);
    const QByteArray alone("\xff\x01\xff\xd0\xff\xd8\xff", 7); // markers, and a fill byte
    const QByteArray resources = QByteArray("8BIM\x03\xed\x03xyz\0\0\0\x05"
                                            "12345\0",
                                            20) +
                                 QByteArray("8BIM\x03\xee\x02xy\0\0\0\0\x02"
                                            "12",
                                            16) +
                                 QByteArray("8BIM\x04\x04\0\0\0\0\0\x06", 12) + "\x1c\x02\x19";
    const QByteArray file =
        QByteArray("\xff\xd8") + segment(char(0xe0), segment(kApp1, "Exif") + exif) + alone +
        segment(kApp1, QByteArray("Exif\0\0", 6) + kTiffHead + "begun ") +
        segment(kApp1, QByteArray("Exif\0\0", 6) + "continued") + exif +
        segment(kApp1, QByteArray("http://ns.adobe.com/xap/1.0/", 29) + "main " + digits) +
        segment(kApp1, QByteArray("http://ns.adobe.com/xap/1.0/", 29) + "another") +
        segment(kApp1, foreign + bigEndian(0) + "xyz") + segment(kApp1, extension + bigEndian(5) + "56789") +
        segment(kApp1, extension + bigEndian(0) + "01234") + segment(kApp1, extension + bigEndian(99) + "far") +
        segment(kApp13, QByteArray("Photoshop 3.0", 14) + resources) + alone +
        segment(kApp13, QByteArray("Photoshop 3.0", 14) + QByteArray("\0\x01z", 3)) + segment(char(0xda), "scan") +
        segment(kApp1, QByteArray("Exif\0\0", 6) + "behind");
    const EmbeddedBlocks blocks = blocksOf(file, "jpeg");
    EXPECT_EQ(blocks.exif, kTiffHead + "begun continued");
    EXPECT_EQ(blocks.xmp, "main " + digits);
    EXPECT_EQ(blocks.extendedXmp, "0123456789");
    EXPECT_EQ(blocks.iptc, QByteArray("\x1c\x02\x19\0\x01z", 6));
    EXPECT_EQ(blocksOf(QByteArray("\xff\xd8\xff\xd9") + exif, "jpeg").exif, "");
}

TEST_F(EmbeddedBlocksOf, PngTextsOfOlderProgramsAreRead)
{
    const auto profile = [](const char *name, const QByteArray &bytes) {
        const QByteArray text =
            "\n" + QByteArray(name) + "\n " + QByteArray::number(bytes.size()) + "\n" + bytes.toHex();
        return pngChunk("zTXt",
                        "Raw profile type " + QByteArray(name) + QByteArray(2, '\0') + deflateZlib(text + "\n"));
    };
    const QByteArray exif = QByteArray("Exif\0\0", 6) + kTiffHead;
    const QByteArray lead("http://ns.adobe.com/xap/1.0/", 29);
    const QByteArray other = pngChunk("tEXt", QByteArray("Comment\0hello", 13));
    const QByteArray proper =
        pngChunk("eXIf", kTiffHead + "proper") +
        pngChunk("iTXt", QByteArray("XML:com.adobe.xmp\0\x01\0en\0\0", 24) + deflateZlib("proper xmp"));
    const std::tuple<QByteArray, QByteArray, QByteArray> rows[] = {
        {other + profile("exif", exif) + profile("xmp", "xmp"), kTiffHead, "xmp"},
        {profile("APP1", exif) + profile("app1", lead + "xmp") + other, kTiffHead, "xmp"},
        // The proper chunks come first, wherever they stand.
        {profile("exif", exif) + profile("xmp", "xmp") + proper, kTiffHead + "proper", "proper xmp"},
        {proper + profile("exif", exif) + profile("xmp", "xmp"), kTiffHead + "proper", "proper xmp"},
        {pngChunk("IEND", {}) + proper, {}, {}}};
    for (const auto &[chunks, exifOf, xmpOf] : rows) {
        const EmbeddedBlocks blocks = blocksOf(kPngSignature + chunks + pngChunk("IEND", {}), "png");
        EXPECT_EQ(blocks.exif, exifOf);
        EXPECT_EQ(blocks.xmp, xmpOf);
    }
}

TEST_F(EmbeddedBlocksOf, PackedPngTextsHaveRoomForOneLargeBlockTogether)
{
    const QByteArray xmp(40 << 20, ' ');
    const QByteArray chunk = pngChunk("iTXt", QByteArray("XML:com.adobe.xmp\0\1\0\0\0", 22) + deflateZlib(xmp));
    EXPECT_EQ(blocksOf(kPngSignature + chunk, "png").xmp, xmp);                        // however large, it is carried
    EXPECT_EQ(blocksOf(kPngSignature + chunk.repeated(500), "png").xmp, QByteArray()); // the last one found no room
}

TEST_F(EmbeddedBlocksOf, WebpChunksAreRead)
{
    const QByteArray body = "WEBPVP8 " + littleEndian(3) + QByteArray("abc\0", 4) + "EXIF" + littleEndian(14) +
                            QByteArray("Exif\0\0", 6) + kTiffHead + "XMP " + littleEndian(3) + "xmp";
    const QByteArray file = "RIFF" + littleEndian(quint32(body.size())) + body;
    const EmbeddedBlocks blocks = blocksOf(file, "webp");
    EXPECT_EQ(blocks.exif, kTiffHead);
    EXPECT_EQ(blocks.xmp, "xmp");
}

} // namespace hazelmark
