#include "OpenPhotos.h"
#include "PropertyDictionary.h"
#include "SamplePhotos.h"
#include "TagSizes.h"
#include "TiffMaker.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

// Small files that would take minutes or gigabytes if they were believed, and their harmless relatives.

TEST(MetadataBombs, TagsThatShareTheirValuesAreLeftOut)
{
    constexpr quint64 kSize = 8 << 20;
    const QTemporaryDir folder;
    const auto addSharing = [](TiffMaker &tiff) {
        TiffEntries entries;
        for (quint16 tag = 0xc800; tag < 0xc800 + 200; ++tag)
            tiff.set(entries, tag, TiffMaker::kUndefined, kSize - 8, tiff.place(8)); // 1.6 GB of values
        return tiff.directory(entries);
    };
    TiffMaker block;
    const QByteArray exif = block.startingAt(addSharing(block)).leftJustified(kSize, '\0');
    // The same in the EXIF directory of a TIFF file.
    TiffMaker file;
    TiffEntries first;
    file.set(first, 0x8769, TiffMaker::kLong, file.place(addSharing(file)));
    file.setNumbers(first, {{0x0100, 1}, {0x0101, 1}, {0x0111, 1}, {0x0117, 1}});
    const QByteArray tiff = file.startingAt(file.directory(first)).leftJustified(kSize, '\0');
    for (const QString &path : {writePhoto(folder, WriteFormat::Png, {.exif = exif}),
                                writeBytes(folder, QStringLiteral("sharing.tif"), tiff)}) {
        EXPECT_FALSE(dictionaryOf(path).isEmpty());
        EXPECT_TRUE(carriedOf(path, WriteFormat::Png).exif.isEmpty());
    }
}

TEST(MetadataBombs, NotesFarLargerThanTheyShouldBeAreNotRead)
{
    TiffMaker tiff;
    TiffEntries first, exif;
    tiff.set(exif, 0x927c, TiffMaker::kUndefined, QByteArray(100, 'n'));
    tiff.set(first, 0x8769, TiffMaker::kLong, tiff.place(tiff.directory(exif)));
    const QByteArray block = tiff.startingAt(tiff.directory(first));
    const QByteArray entry = block.mid(block.indexOf(QByteArray("\x7c\x92\7\0\x64\0\0\0", 8)), 12);
    for (const int more : {100'000, 800'000}) {
        const QByteArray large = block + QByteArray(more, '\0');
        EXPECT_EQ(withoutUnusualNote(large).contains(entry), more < 800'000) << more;
        EXPECT_EQ(withoutUnusualNote(large).size(), large.size());
    }
}

TEST(MetadataBombs, LongTextsAreCut)
{
    const QTemporaryDir folder;
    TiffMaker tiff;
    TiffEntries entries;
    tiff.set(entries, 0x010e, TiffMaker::kAscii, QByteArray(200'000, 'x'));
    const QByteArray exif = tiff.startingAt(tiff.directory(entries));
    const QVariantMap dict = dictionaryOf(writePhoto(folder, WriteFormat::Png, {.exif = exif}));
    EXPECT_EQ(dict[kTiffGroup].toMap()[QStringLiteral("ImageDescription")].toString().size(), 65536);
}

} // namespace hazelmark
