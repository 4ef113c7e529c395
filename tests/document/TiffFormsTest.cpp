// TIFF files of every form: what they say of the photo is read and carried as from any other.
#include "OpenPhotos.h"
#include "SamplePhotos.h"
#include "TiffMaker.h"

#include <QTemporaryDir>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

namespace hazelmark {

namespace {

struct Form
{
    const char *what;
    bool isBigEndian;
    bool isLarge;              ///< offsets of 64 bits
    qsizetype pixelBytes = 36; ///< in front of the metadata
    bool leadsBack = false;    ///< the directory for EXIF is the first one
};

/// In the maker's note, which says where in the file it lies.
const QByteArray kOwner("The camera's owner", 19);

QByteArray photo(const Form &form)
{
    TiffMaker tiff(form.isBigEndian, form.isLarge);
    TiffEntries first, exif, gps;
    const auto pixels = quint32(tiff.add(QByteArray(form.pixelBytes, '\x55')));
    tiff.setNumbers(first, {{0x0100, 4},
                            {0x0101, 3},
                            {0x0102, 8},
                            {0x0103, 1},
                            {0x0106, 1},
                            {0x0111, pixels},
                            {0x0112, 6},
                            {0x0115, 1},
                            {0x0116, 3},
                            {0x0117, 12}});
    tiff.set(exif, 0x829a, TiffMaker::kRational, tiff.number(quint32(1)) + tiff.number(quint32(3)));
    tiff.set(exif, 0x9286, TiffMaker::kUndefined, 0x7fffffff, tiff.place(8)); // said to be two gigabytes long
    const QByteArray owner = tiff.number(quint16(9)) + tiff.number(quint16(TiffMaker::kAscii)) +
                             tiff.number(quint32(kOwner.size())) + tiff.number(quint32(tiff.add(kOwner)));
    tiff.set(exif, 0x927c, TiffMaker::kUndefined, tiff.number(quint16(1)) + owner + tiff.number(quint32(0)));
    tiff.set(gps, 1, TiffMaker::kAscii, QByteArray("S", 2));
    tiff.set(first, 0x010f, TiffMaker::kAscii, QByteArray("Canon, a long name", 19));
    tiff.set(first, 0x83bb, TiffMaker::kUndefined, QByteArray("\x1c\x02\x19\0\3sea", 8));
    const quint16 pointer = form.isLarge ? TiffMaker::kDirectory : TiffMaker::kLong;
    tiff.set(first, 0x8825, TiffMaker::Type(pointer), tiff.place(tiff.directory(gps)));
    const quint64 below = tiff.directory(exif);
    tiff.set(first, 0x8769, TiffMaker::Type(pointer), tiff.place(below));
    const quint64 start = tiff.directory(first);
    QByteArray file = tiff.startingAt(start);
    const QByteArray entry = tiff.number(quint16(0x8769)) + tiff.number(pointer) + tiff.place(1);
    if (form.leadsBack)
        file.replace(entry + tiff.place(below), entry + tiff.place(start));
    return file;
}

} // namespace

TEST(TiffForms, AllSayAndCarryTheSame)
{
    const QTemporaryDir folder;
    for (const Form &form : {Form{"plain", false, false}, Form{"other bytes", true, false}, Form{"large", false, true},
                             Form{"large, other bytes", true, true}, Form{"far", false, false, 2 << 20},
                             Form{"back", false, false, 36, true}}) {
        SCOPED_TRACE(form.what);
        const QString path = writeBytes(folder, QStringLiteral("photo.tif"), photo(form));
        const QString copy = writePhoto(folder, WriteFormat::Jpeg, carriedOf(path, WriteFormat::Jpeg));
        const auto written = Exiv2::ImageFactory::open(copy.toStdString());
        written->readMetadata();
        const auto owner = written->exifData().findKey(Exiv2::ExifKey("Exif.Canon.OwnerName"));
        EXPECT_EQ(owner != written->exifData().end() && owner->toString() == kOwner.constData(),
                  !form.leadsBack && !form.isLarge);
        for (const QString &file : {path, copy}) {
            const QVariantMap dict = dictionaryOf(file);
            const auto valueOf = [&](const char *group, const char *key) {
                return dict[QLatin1String(group)].toMap()[QLatin1String(key)];
            };
            EXPECT_EQ(dict[QStringLiteral("Orientation")].toInt(), 6);
            EXPECT_EQ(valueOf("{TIFF}", "Make").toString(), QStringLiteral("Canon, a long name"));
            EXPECT_EQ(valueOf("{GPS}", "LatitudeRef").toString(), QStringLiteral("S"));
            EXPECT_EQ(valueOf("{IPTC}", "Keywords").toList(), QVariantList{QStringLiteral("sea")});
            EXPECT_FALSE(valueOf("{Exif}", "UserComment").isValid());
            const double time = valueOf("{Exif}", "ExposureTime").toDouble();
            EXPECT_DOUBLE_EQ(time, form.leadsBack ? 0 : 1.0 / 3);
        }
    }
}

} // namespace hazelmark
