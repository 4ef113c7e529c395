#include "EmbeddedBlocks.h"
#include "IptcRecords.h"
#include "OpenPhotos.h"
#include "PropertyDictionary.h"
#include "SamplePhotos.h"
#include "TagSizes.h"
#include "TiffMaker.h"
#include "ZlibStream.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

/// Adds a directory of `count` tags, each of which has the whole of `size` bytes for its value.
quint64 addSharing(TiffMaker &tiff, int count, quint64 size)
{
    TiffEntries entries;
    for (int i = 0; i < count; ++i)
        tiff.set(entries, quint16(0xc800 + i), TiffMaker::kUndefined, size - 8, tiff.place(8));
    return tiff.directory(entries);
}

} // namespace

// Small files that would take minutes or gigabytes if they were believed, and their harmless relatives.

TEST(MetadataBombs, TagsThatShareTheirValuesAreLeftOut)
{
    constexpr quint64 kSize = 8 << 20;
    const QTemporaryDir folder;
    TiffMaker block;
    MetadataBlocks blocks;
    blocks.exif = block.startingAt(addSharing(block, 200, kSize)).leftJustified(kSize, '\0'); // 1.6 GB of values

    // The same in the EXIF directory of a TIFF file.
    TiffMaker file;
    TiffEntries first;
    file.set(first, 0x8769, TiffMaker::kLong, file.place(addSharing(file, 200, kSize)));
    for (const quint16 tag : {0x0100, 0x0101, 0x0111, 0x0117})
        file.set(first, tag, TiffMaker::kShort, file.number(quint16(1)));
    const QByteArray tiff = file.startingAt(file.directory(first)).leftJustified(kSize, '\0');
    for (const QString &path :
         {writePhoto(folder, WriteFormat::Png, blocks), writeBytes(folder, QStringLiteral("sharing.tif"), tiff)}) {
        EXPECT_TRUE(dictionaryOf(path));
        EXPECT_TRUE(carriedOf(path, {40, 30}, WriteFormat::Png).exif.isEmpty());
    }
}

TEST(MetadataBombs, NoteOfAnUnusuallyLargeBlockIsNotRead)
{
    TiffMaker tiff;
    TiffEntries first, exif;
    tiff.set(exif, 0x927c, TiffMaker::kUndefined, QByteArray(100, 'n'));
    const QByteArray entry = exif[0x927c];
    tiff.set(first, 0x8769, TiffMaker::kLong, tiff.place(tiff.directory(exif)));
    const QByteArray block = tiff.startingAt(tiff.directory(first));
    EXPECT_EQ(withoutUnusualNote(block), block);
    EXPECT_FALSE(withoutUnusualNote(block + QByteArray(800'000, '\0')).contains(entry));
}

TEST(MetadataBombs, FileWithALargePacketAmongItsTagsIsImplausible)
{
    const QTemporaryDir folder;
    const auto isPlausible = [&](int packetSize) {
        TiffMaker tiff;
        TiffEntries first;
        tiff.set(first, 0x02bc, TiffMaker::kByte, QByteArray(packetSize, ' '));
        const QByteArray file = tiff.startingAt(tiff.directory(first));
        return hasPlausibleTags(**SourceFile::open(writeBytes(folder, QStringLiteral("a.tif"), file)));
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
    TiffMaker tiff;
    TiffEntries first, exif;
    const auto numberIn = [&](TiffEntries &entries, quint16 tag, quint32 value) {
        tiff.set(entries, tag, TiffMaker::kLong, tiff.number(value));
    };
    numberIn(first, 0x0111, quint32(tiff.add(QByteArray(kPixels, '\x80'))));
    tiff.set(exif, 0x829d, TiffMaker::kRational, tiff.number(quint32(28)) + tiff.number(quint32(10)));
    tiff.set(exif, 0x9286, TiffMaker::kUndefined, 0x7fffffff, tiff.place(8));
    numberIn(first, 0x8769, quint32(tiff.directory(exif)));
    for (const auto &[tag, value] : {std::pair<quint16, quint32>(0x0100, 2048),
                                     {0x0101, 1024},
                                     {0x0102, 8},
                                     {0x0106, 1},
                                     {0x0112, 6},
                                     {0x0117, kPixels}})
        numberIn(first, tag, value);
    const QTemporaryDir folder;
    const auto dict =
        dictionaryOf(writeBytes(folder, QStringLiteral("far.tif"), tiff.startingAt(tiff.directory(first))));
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->value(QStringLiteral("Orientation")).toInt(), 6);
    EXPECT_EQ(dict->value(kTiffGroup).toMap().value(QStringLiteral("PhotometricInterpretation")).toInt(), 1);
    const QVariantMap group = dict->value(kExifGroup).toMap();
    EXPECT_EQ(group.value(QStringLiteral("FNumber")).toDouble(), 2.8);
    EXPECT_FALSE(group.contains(QStringLiteral("UserComment"))); // said to be two gigabytes long
}

} // namespace hazelmark
