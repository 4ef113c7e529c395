// TIFF files with 64-bit offsets: what they say of the photo is read and carried as from any other TIFF file.
#include "OpenPhotos.h"
#include "PhotoFile.h"
#include "SamplePhotos.h"
#include "TiffBytes.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

enum Type : quint16 { kAscii = 2, kShort = 3, kLong = 4, kRational = 5, kUndefined = 7, kDirectory = 18 };

/// Puts such a file together, values and directories in the order in which they come.
class BigTiff
{
public:
    explicit BigTiff(bool isBigEndian)
        : m_isBigEndian(isBigEndian)
        , m_bytes((isBigEndian ? "MM" : "II") + number<quint16>(43) + number<quint16>(8) + number<quint16>(0) +
                  number<quint64>(0))
    {
    }

    template <typename Number>
    QByteArray number(Number value) const
    {
        return tiffBytes(value, m_isBigEndian);
    }

    quint64 append(const QByteArray &bytes)
    {
        const auto place = quint64(m_bytes.size());
        m_bytes += evenlyLong(bytes);
        return place;
    }

    QByteArray entry(quint16 tag, Type type, quint64 count, const QByteArray &value)
    {
        const QByteArray field = value.size() > 8 ? number(append(value)) : value.leftJustified(8, '\0');
        return number(tag) + number(quint16(type)) + number(count) + field;
    }
    QByteArray shortEntry(quint16 tag, quint16 value) { return entry(tag, kShort, 1, number(value)); }
    QByteArray textEntry(quint16 tag, const QByteArray &text)
    {
        return entry(tag, kAscii, quint64(text.size() + 1), text + '\0');
    }

    quint64 directory(const QByteArrayList &entries)
    {
        return append(number(quint64(entries.size())) + entries.join() + number(quint64(0)));
    }

    QByteArray withFirst(quint64 place) { return m_bytes.replace(8, 8, number(place)); }

private:
    const bool m_isBigEndian;
    QByteArray m_bytes;
};

QByteArray photo(bool isBigEndian)
{
    BigTiff tiff(isBigEndian);
    const QByteArray iptc("\x1c\x02\x19\0\3sea", 8);
    const QByteArray third = tiff.number(quint32(1)) + tiff.number(quint32(3));
    const quint64 exif = tiff.directory({tiff.entry(0x829a, kRational, 1, third), tiff.shortEntry(0x8827, 400)});
    const quint64 gps = tiff.directory({tiff.textEntry(1, "S")});
    const quint64 pixels = tiff.append(QByteArray(4 * 3 * 3, '\x55'));
    return tiff.withFirst(tiff.directory(
        {tiff.shortEntry(0x0100, 4), tiff.shortEntry(0x0101, 3),
         tiff.entry(0x0102, kShort, 3, tiff.number(quint16(8)) + tiff.number(quint16(8)) + tiff.number(quint16(8))),
         tiff.shortEntry(0x0103, 1), tiff.shortEntry(0x0106, 2), tiff.textEntry(0x010f, "A maker with a long name"),
         tiff.entry(0x0111, kLong, 1, tiff.number(quint32(pixels))), tiff.shortEntry(0x0112, 6),
         tiff.shortEntry(0x0115, 3), tiff.shortEntry(0x0116, 3), tiff.entry(0x0117, kLong, 1, tiff.number(quint32(36))),
         tiff.entry(0x83bb, kUndefined, quint64(iptc.size()), iptc),
         tiff.entry(0x8769, kDirectory, 1, tiff.number(exif)), tiff.entry(0x8825, kDirectory, 1, tiff.number(gps))}));
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

TEST_P(BigTiffFiles, ThatAreHostileCostNothing)
{
    const QTemporaryDir folder;
    QByteArray bytes = photo(GetParam());
    // Every cut, and every byte of the header and of the directories at its largest.
    for (qsizetype at = 16; at < bytes.size(); at += 11) {
        (void)carriedOf(writeBytes(folder, QStringLiteral("cut.tif"), bytes.left(at)), {4, 3}, WriteFormat::Jpeg);
        const char was = std::exchange(bytes[at], '\xff');
        (void)carriedOf(writeBytes(folder, QStringLiteral("odd.tif"), bytes), {4, 3}, WriteFormat::Tiff);
        bytes[at] = was;
    }
    // The EXIF directory is the first one.
    const bool isBigEndian = GetParam();
    const QByteArray entry = tiffBytes(quint16(0x8769), isBigEndian) + tiffBytes(quint16(kDirectory), isBigEndian);
    ASSERT_TRUE(bytes.contains(entry));
    bytes.replace(bytes.indexOf(entry) + 12, 8, bytes.mid(8, 8));
    const QString loop = writeBytes(folder, QStringLiteral("loop.tif"), bytes);
    EXPECT_EQ(PhotoFile(loop).metaInfoDict()->value(QStringLiteral("Orientation")).toInt(), 6);
}

INSTANTIATE_TEST_SUITE_P(BothByteOrders, BigTiffFiles, ::testing::Bool());

} // namespace hazelmark
