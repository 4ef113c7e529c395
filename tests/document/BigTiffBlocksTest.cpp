// TIFF files with 64-bit offsets: what they say of the photo is read and carried as from any other TIFF file.
#include "OpenPhotos.h"
#include "PhotoFile.h"
#include "SamplePhotos.h"
#include "TiffMaker.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QByteArray photo(bool isBigEndian)
{
    TiffMaker tiff(isBigEndian, true);
    TiffEntries first, exif, gps;
    const auto numberIn = [&](TiffEntries &entries, quint16 tag, quint16 value) {
        tiff.set(entries, tag, TiffMaker::kShort, tiff.number(value));
    };
    tiff.set(exif, 0x829a, TiffMaker::kRational, tiff.number(quint32(1)) + tiff.number(quint32(3)));
    numberIn(exif, 0x8827, 400);
    tiff.set(gps, 1, TiffMaker::kAscii, QByteArray("S", 2));
    const quint64 pixels = tiff.add(QByteArray(4 * 3 * 3, '\x55'));
    for (const auto &[tag, value] : {std::pair<quint16, quint16>(0x0100, 4),
                                     {0x0101, 3},
                                     {0x0102, 8},
                                     {0x0103, 1},
                                     {0x0106, 1},
                                     {0x0112, 6},
                                     {0x0115, 1},
                                     {0x0116, 3},
                                     {0x0117, 12}})
        numberIn(first, tag, value);
    numberIn(first, 0x0111, quint16(pixels));
    tiff.set(first, 0x010f, TiffMaker::kAscii, QByteArray("A maker with a long name", 25));
    tiff.set(first, 0x83bb, TiffMaker::kUndefined, QByteArray("\x1c\x02\x19\0\3sea", 8));
    tiff.set(first, 0x8769, TiffMaker::kDirectory, tiff.number(tiff.directory(exif)));
    tiff.set(first, 0x8825, TiffMaker::kDirectory, tiff.number(tiff.directory(gps)));
    return tiff.startingAt(tiff.directory(first));
}

QVariantMap group(const QString &path, const char *name)
{
    return PhotoFile(path).metaInfoDict().value_or(QVariantMap()).value(QLatin1String(name)).toMap();
}

} // namespace

using BigTiffFiles = ::testing::TestWithParam<bool>;

TEST_P(BigTiffFiles, SayAndCarryWhatAnyTiffDoes)
{
    const QTemporaryDir folder;
    const QString path = writeBytes(folder, QStringLiteral("big.tif"), photo(GetParam()));
    EXPECT_EQ(PhotoFile(path).width(), 3);
    EXPECT_EQ(PhotoFile(path).height(), 4);

    const MetadataBlocks carried = carriedOf(path, {4, 3}, WriteFormat::Jpeg);
    const QString copy = writePhoto(folder, WriteFormat::Jpeg, carried, QSize(4, 3));
    for (const QString &file : {path, copy}) {
        EXPECT_EQ(PhotoFile(file).metaInfoDict()->value(QStringLiteral("Orientation")).toInt(), 6);
        EXPECT_EQ(group(file, "{TIFF}")[QStringLiteral("Make")].toString(), QStringLiteral("A maker with a long name"));
        EXPECT_DOUBLE_EQ(group(file, "{Exif}")[QStringLiteral("ExposureTime")].toDouble(), 1.0 / 3);
        EXPECT_EQ(group(file, "{Exif}")[QStringLiteral("ISOSpeedRatings")].toList(), QVariantList{400});
        EXPECT_EQ(group(file, "{GPS}")[QStringLiteral("LatitudeRef")].toString(), QStringLiteral("S"));
        EXPECT_EQ(group(file, "{IPTC}")[QStringLiteral("Keywords")].toList(), QVariantList{QStringLiteral("sea")});
    }
}

TEST_P(BigTiffFiles, ThatLeadBackToTheirStartAreRead)
{
    const QTemporaryDir folder;
    QByteArray bytes = photo(GetParam());
    // The EXIF directory is the first one.
    const bool isBigEndian = GetParam();
    const QByteArray entry =
        tiffBytes(quint16(0x8769), isBigEndian) + tiffBytes(quint16(TiffMaker::kDirectory), isBigEndian);
    ASSERT_TRUE(bytes.contains(entry));
    bytes.replace(bytes.indexOf(entry) + 12, 8, bytes.mid(8, 8));
    const QString loop = writeBytes(folder, QStringLiteral("loop.tif"), bytes);
    EXPECT_EQ(PhotoFile(loop).metaInfoDict()->value(QStringLiteral("Orientation")).toInt(), 6);
}

INSTANTIATE_TEST_SUITE_P(BothByteOrders, BigTiffFiles, ::testing::Bool());

} // namespace hazelmark
