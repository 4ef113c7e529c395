#include "EmbeddedBlocks.h"
#include "TestFiles.h"
#include "TiffBlocks.h"

namespace hazelmark {

namespace {

const QByteArray kTiffStart("MM\0*", 4);
const QByteArray kXmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>\xc3\xa4</x:xmpmeta>";

QByteArray largePacket()
{
    return "<x:xmpmeta xmlns:x='adobe:ns:meta/'>" + noiseBytes(80000, 4).toHex() + "</x:xmpmeta>";
}

QByteArray records(int count)
{
    return QByteArray("\x1c\x02\x19\0\x04word", 9).repeated(count);
}

} // namespace

/// What is written, read back: the bytes themselves are held by the tests of reading.
class Metadata : public FolderTest
{
protected:
    EmbeddedBlocks blocksOfWritten(WriteFormat format, const MetadataBlocks &metadata) const
    {
        const QByteArray file = encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(format, metadata));
        const auto source = SourceFile::open(write(QStringLiteral("written"), file));
        const auto [info, picture] = read(file);
        EXPECT_EQ(info.iccProfile, metadata.iccProfile);
        return format == WriteFormat::Tiff ? readTiffBlocks(**source) : *readEmbeddedBlocks(**source, info.format);
    }
};

TEST_F(Metadata, EachBlockIsReadBackFromEachFormat)
{
    const QByteArray exif = kTiffStart + noiseBytes(65520, 1);
    const QByteArray largest(kTiffStart + noiseBytes(65523, 1)); // that fits into a segment
    const std::vector<PngText> texts = {{"Title", QStringLiteral("A day"), {}, {}},
                                        {"Author", QString(QChar(0x4e00)), "zh", QString(QChar(0x4f5c))},
                                        {"Source", QStringLiteral("plain"), {}, QStringLiteral("other")},
                                        {"Comment", QStringLiteral("plain"), "en", {}}};
    const struct
    {
        const char *what;
        WriteFormat format;
        MetadataBlocks metadata;
    } rows[] = {
        {"JPEG", WriteFormat::Jpeg, {largest, records(7), kXmp, noiseBytes(140001, 3), {}, {}}},
        {"JPEG of records in many segments", WriteFormat::Jpeg, {{}, records(20000), {}, {}, {}, {}}},
        {"JPEG without any", WriteFormat::Jpeg, {}},
        {"PNG", WriteFormat::Png, {exif, records(11), kXmp, noiseBytes(5000, 3), {}, {}}},
        {"PNG of a large packet", WriteFormat::Png, {{}, {}, largePacket(), {}, {}, {}}},
        {"PNG of texts", WriteFormat::Png, {.texts = texts}},
        {"TIFF", WriteFormat::Tiff, {{}, records(3), kXmp, noiseBytes(5001, 3), {}, {}}},
    };
    for (const auto &[what, format, metadata] : rows) {
        SCOPED_TRACE(what);
        const EmbeddedBlocks read = blocksOfWritten(format, metadata);
        EXPECT_TRUE(read.exif == metadata.exif);
        EXPECT_TRUE(read.iptc == metadata.iptc);
        EXPECT_TRUE(read.xmp == metadata.xmp);
        EXPECT_TRUE(read.texts == metadata.texts);
        EXPECT_TRUE(read.extendedXmp.isEmpty());
    }
}

TEST_F(Metadata, WhatIsTooLargeForASegmentIsSplitShortenedOrLeftOutAlone)
{
    MetadataBlocks metadata;
    metadata.exif = kTiffStart + noiseBytes(65524, 1);
    metadata.iptc = records(1);
    metadata.xmp = "<?xpacket begin='' id='x'?>" + largePacket() + "<?xpacket end='w'?>";
    EmbeddedBlocks read = blocksOfWritten(WriteFormat::Jpeg, metadata);
    EXPECT_TRUE(read.exif.isEmpty());
    EXPECT_EQ(read.iptc, metadata.iptc);
    EXPECT_TRUE(read.xmp.contains("xmpNote:HasExtendedXMP="));
    EXPECT_TRUE(read.extendedXmp == largePacket());
    // Padding is dropped first.
    metadata.xmp = "<?xpacket begin='' id='x'?>\n" + kXmp + QByteArray(70000, ' ') + "<?xpacket end='w'?>";
    EXPECT_EQ(blocksOfWritten(WriteFormat::Jpeg, metadata).xmp, kXmp);
}

TEST_F(Metadata, ResolutionIsKeptAsPreciselyAsTheFormatHoldsItOrLeftOut)
{
    const auto dpiOfWritten = [this](WriteFormat format, QSizeF dpi) {
        return infoOf(encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(format, {.dpi = dpi}))).dpi;
    };
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff, WriteFormat::Bmp}) {
        const std::optional<QSizeF> dpi = dpiOfWritten(format, QSizeF(299.6, 72));
        ASSERT_TRUE(dpi) << int(format);
        EXPECT_NEAR(dpi->width(), format == WriteFormat::Jpeg ? 300 : 299.6, 0.02) << int(format);
        EXPECT_NEAR(dpi->height(), 72, 0.02) << int(format);
    }
    for (const QSizeF dpi : {QSizeF(0, 0), QSizeF(-5, 5), QSizeF(1e12, 1e12), QSizeF(qQNaN(), 1), QSizeF(300, 0),
                             QSizeF(0, 300), QSizeF(300, 1e12), QSizeF(1e12, 300)}) {
        for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Bmp})
            EXPECT_EQ(dpiOfWritten(format, dpi), std::nullopt) << dpi.width() << " in " << int(format);
    }
}

} // namespace hazelmark
