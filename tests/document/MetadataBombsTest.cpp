#include "EmbeddedBlocks.h"
#include "IptcRecords.h"
#include "OpenPhotos.h"
#include "PropertyDictionary.h"
#include "SamplePhotos.h"
#include "TagSizes.h"
#include "TiffBytes.h"
#include "ZlibStream.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QByteArray tiffEntry(quint16 tag, quint16 type, quint32 count, quint32 value)
{
    return tiffBytes(tag, false) + tiffBytes(type, false) + tiffBytes(count, false) + tiffBytes(value, false);
}

/// A TIFF structure of `count` tags, each of which has the whole block for its value.
QByteArray sharingTags(int count, quint32 size)
{
    QByteArray block = QByteArray("II*\0\x08\0\0\0", 8) + tiffBytes(quint16(count), false);
    for (int i = 0; i < count; ++i)
        block += tiffEntry(quint16(0xc800 + i), 7, size - 8, 8);
    return block + QByteArray(size - block.size(), '\0');
}

} // namespace

// Small files that would take minutes or gigabytes if they were believed, and their harmless relatives.

TEST(MetadataBombs, TagsThatShareTheirValuesAreLeftOut)
{
    constexpr quint32 kSize = 8 << 20;
    const QTemporaryDir folder;
    MetadataBlocks blocks;
    blocks.exif = sharingTags(200, kSize); // 1.6 GB of values
    const QString path = writePhoto(folder, WriteFormat::Png, blocks);
    EXPECT_TRUE(dictionaryOf(path));
    EXPECT_TRUE(carriedOf(path, {40, 30}, WriteFormat::Png).exif.isEmpty());

    // The same in the EXIF directory of a TIFF file, behind the first.
    constexpr quint32 kBehindFirst = 8 + 2 + 5 * 12 + 4;
    const QString tiff =
        writeBytes(folder, QStringLiteral("sharing.tif"),
                   QByteArray("II*\0\x08\0\0\0", 8) + tiffBytes(quint16(5), false) + tiffEntry(256, 3, 1, 1) +
                       tiffEntry(257, 3, 1, 1) + tiffEntry(273, 4, 1, 8) + tiffEntry(279, 4, 1, 1) +
                       tiffEntry(0x8769, 4, 1, kBehindFirst) + QByteArray(4, '\0') + sharingTags(200, kSize).mid(8));
    EXPECT_TRUE(dictionaryOf(tiff));
    EXPECT_TRUE(carriedOf(tiff, {40, 30}, WriteFormat::Png).exif.isEmpty());
}

TEST(MetadataBombs, NoteOfAnUnusuallyLargeBlockIsNotRead)
{
    constexpr quint32 kExif = 8 + 2 + 12 + 4;
    constexpr quint32 kNote = kExif + 2 + 12 + 4;
    const QByteArray entry = tiffEntry(0x927c, 7, 100, kNote);
    const QByteArray block = QByteArray("II*\0\x08\0\0\0", 8) + tiffBytes(quint16(1), false) +
                             tiffEntry(0x8769, 4, 1, kExif) + QByteArray(4, '\0') + tiffBytes(quint16(1), false) +
                             entry + QByteArray(4 + 200'000, '\0');
    EXPECT_EQ(withoutUnusualNote(block), block);
    EXPECT_FALSE(withoutUnusualNote(block + QByteArray(800'000, '\0')).contains(entry));
}

TEST(MetadataBombs, FileWithALargePacketAmongItsTagsIsImplausible)
{
    const QTemporaryDir folder;
    const auto isPlausible = [&](quint32 packetSize) {
        const QByteArray tags = QByteArray("II*\0\x08\0\0\0", 8) + tiffBytes(quint16(1), false) +
                                tiffEntry(700, 1, packetSize, 26) + QByteArray(4 + qsizetype(packetSize), '\0');
        return hasPlausibleTags(**SourceFile::open(writeBytes(folder, QStringLiteral("a.tif"), tags)));
    };
    EXPECT_TRUE(isPlausible(10'000));
    EXPECT_FALSE(isPlausible(100'000));
}

TEST(MetadataBombs, PackedTextsHaveRoomForOneLargeBlockTogether)
{
    const auto number = [](qsizetype value) { return tiffBytes(quint32(value), true); };
    const QTemporaryDir folder;
    const QByteArray xmp = xmpPacket(QByteArray(40 << 20, ' '));
    const QByteArray text = QByteArray("XML:com.adobe.xmp\0\1\0\0\0", 22) + deflateZlib(xmp);
    const QByteArray chunk = number(text.size()) + "iTXt" + text + number(0); // nobody checks the sum here
    const QByteArray signature("\x89PNG\r\n\x1a\n", 8);
    const auto xmpOf = [&](int count) {
        const auto source =
            SourceFile::open(writeBytes(folder, QStringLiteral("bomb.png"), signature + chunk.repeated(count)));
        return readEmbeddedBlocks(**source, "png").xmp;
    };
    EXPECT_EQ(xmpOf(1), xmp);            // however large, it is carried
    EXPECT_EQ(xmpOf(500), QByteArray()); // the last one counts, and found no room
}

TEST(MetadataBombs, ThousandsOfKeywordsAreReadAndCarriedMillionsAreNotAll)
{
    const QTemporaryDir folder;
    MetadataBlocks blocks;
    blocks.iptc = QByteArray("\x1c\x02\x19\0\x01k", 6).repeated(60'000);
    const QString path = writePhoto(folder, WriteFormat::Jpeg, blocks);
    EXPECT_EQ(carriedOf(path, {40, 30}, WriteFormat::Jpeg).iptc, blocks.iptc);
    const auto dict = dictionaryOf(path);
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->value(kIptcGroup).toMap().value(QStringLiteral("Keywords")).toList().size(), 60'000);
    EXPECT_EQ(iptcRecords(blocks.iptc.repeated(40)).size(), 1'000'000U);
}

TEST(MetadataBombs, TagsFarBehindThePixelsOfATiffAreShown)
{
    constexpr quint32 kPixels = 2 << 20;
    constexpr quint32 kFirst = 8 + kPixels;
    constexpr quint32 kExif = kFirst + 2 + 8 * 12 + 4;
    constexpr quint32 kValues = kExif + 2 + 3 * 12 + 4;
    const auto number = [](auto value) { return tiffBytes(value, false); };
    const QTemporaryDir folder;
    const QString path = writeBytes(
        folder, QStringLiteral("far.tif"),
        QByteArray("II*\0", 4) + number(kFirst) + QByteArray(kPixels, '\x80') + number(quint16(8)) +
            tiffEntry(256, 4, 1, 2048) + tiffEntry(257, 4, 1, 1024) + tiffEntry(258, 3, 1, 8) +
            tiffEntry(262, 3, 1, 1) + tiffEntry(273, 4, 1, 8) + tiffEntry(274, 3, 1, 6) +
            tiffEntry(279, 4, 1, kPixels) + tiffEntry(0x8769, 4, 1, kExif) + QByteArray(4, '\0') + number(quint16(3)) +
            tiffEntry(0x829d, 5, 1, kValues) + tiffEntry(0x8827, 3, 1, 400) + tiffEntry(0x9286, 7, 0x7fffffff, 8) +
            QByteArray(4, '\0') + number(quint32(28)) + number(quint32(10)));
    const auto dict = dictionaryOf(path);
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->value(QStringLiteral("Orientation")).toInt(), 6);
    EXPECT_EQ(dict->value(kTiffGroup).toMap().value(QStringLiteral("PhotometricInterpretation")).toInt(), 1);
    const QVariantMap exif = dict->value(kExifGroup).toMap();
    EXPECT_EQ(exif.value(QStringLiteral("FNumber")).toDouble(), 2.8);
    EXPECT_FALSE(exif.contains(QStringLiteral("UserComment"))); // said to be two gigabytes long
}

} // namespace hazelmark
