
#include "Decoder.h"
#include "OpenPhotos.h"
#include "PropertyDictionary.h"
#include "SamplePhotos.h"
#include "TiffBlocks.h"
#include "TiffMaker.h"
#include "TiffTags.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImage>
#include <QTemporaryDir>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

#include <random>

namespace hazelmark {

namespace {

constexpr QSize kSize(40, 30);

/// A JPEG file whose content occurs nowhere else.
QByteArray thumbnail(int seed = 1)
{
    std::mt19937 random{std::mt19937::result_type(seed)};
    QImage pixels(16, 12, QImage::Format_RGB32);
    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 16; ++x)
            pixels.setPixel(x, y, random() | 0xff000000);
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    pixels.save(&buffer, "JPG");
    return bytes;
}

/// Bytes from the end of the thumbnail's data, by which it would be found.
QByteArray traceOf(const QByteArray &picture)
{
    return picture.right(40).left(24);
}

MetadataBlocks exifAlone(const Exiv2::ExifData &data, Exiv2::ByteOrder order = Exiv2::littleEndian)
{
    Exiv2::MemIo io;
    Exiv2::TiffParser::encode(io, nullptr, 0, order, data, {}, {});
    MetadataBlocks blocks;
    blocks.exif = QByteArray(reinterpret_cast<const char *>(io.mmap()), qsizetype(io.size()));
    return blocks;
}

void setBytes(Exiv2::ExifData &data, const char *key, const QByteArray &bytes)
{
    data[key] = Exiv2::DataValue(reinterpret_cast<const Exiv2::byte *>(bytes.constData()), long(bytes.size()));
}

void setThumbnail(Exiv2::ExifData &data, const QByteArray &picture)
{
    Exiv2::ExifThumb(data).setJpegThumbnail(reinterpret_cast<const Exiv2::byte *>(picture.constData()),
                                            long(picture.size()));
}

} // namespace

class CarriedMetadata : public testing::TestWithParam<std::tuple<WriteFormat, WriteFormat>>
{
protected:
    WriteFormat sourceFormat() const { return std::get<0>(GetParam()); }
    WriteFormat targetFormat() const { return std::get<1>(GetParam()); }

    QString writeSource(const MetadataBlocks &blocks) { return writePhoto(m_sources, sourceFormat(), blocks, kSize); }

    /// The written file of the same size, with what it carries.
    QString exportOf(const QString &source)
    {
        return writePhoto(m_targets, targetFormat(), carriedOf(source, kSize, targetFormat()), kSize);
    }

    /// Without the resolution, which PNG files state in whole pixels a metre, and what only TIFF files say.
    static QVariantMap propertiesOf(const QString &path)
    {
        QVariantMap properties = dictionaryOf(path).value_or(QVariantMap());
        properties.remove(QStringLiteral("DPIWidth"));
        properties.remove(QStringLiteral("DPIHeight"));
        QVariantMap tiff = properties.value(kTiffGroup).toMap();
        tiff.remove(QStringLiteral("Compression"));
        tiff.remove(QStringLiteral("PhotometricInterpretation"));
        properties.insert(kTiffGroup, tiff);
        return properties;
    }

    Exiv2::ExifData exifOf(const QString &path)
    {
        const auto image = Exiv2::ImageFactory::open(path.toStdString());
        image->readMetadata();
        return image->exifData();
    }

    const QTemporaryDir m_sources;
    const QTemporaryDir m_targets;
};

TEST_P(CarriedMetadata, IsAllOfTheSource)
{
    MetadataBlocks blocks = richMetadata();
    blocks.iccProfile = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    blocks.dpi = QSizeF(300, 300);
    const QString source = writeSource(blocks);
    const QString target = exportOf(source);
    EXPECT_EQ(propertiesOf(target), propertiesOf(source));
    const Outcome<PictureInfo> info = readPictureInfo(target);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->iccProfile, blocks.iccProfile);
    const MetadataBlocks again = carriedOf(target, kSize, targetFormat());
    EXPECT_EQ(again.iptc, blocks.iptc);
    EXPECT_EQ(again.xmp, carriedOf(source, kSize, targetFormat()).xmp);

    const Exiv2::ExifData before = exifOf(source);
    const Exiv2::ExifData after = exifOf(target);
    for (const Exiv2::Exifdatum &datum : before) {
        if (datum.groupName() == "Image" && (isTiffStorageTag(datum.tag()) || isTiffDataTag(datum.tag())))
            continue;
        const auto found = after.findKey(Exiv2::ExifKey(datum.key()));
        ASSERT_NE(found, after.end()) << datum.key();
        const bool isOffset = datum.tagName() == "ExifTag" || datum.tagName() == "GPSTag";
        EXPECT_TRUE(isOffset || found->toString() == datum.toString()) << datum.key();
    }
}

TEST_P(CarriedMetadata, KeepsANoteOfAnUnknownMakerInItsPlaceWithoutItsPictures)
{
    const QByteArray inNote = thumbnail(2);
    const QByteArray inTag = thumbnail(3);
    const QByteArray note = "ACME\1 offsets from the start of the block " + inNote + " and the end";
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = "Acme";
    setBytes(data, "Exif.Photo.MakerNote", note);
    setThumbnail(data, inTag);
    data["Exif.Photo.PixelXDimension"] = uint32_t(4000);
    const MetadataBlocks blocks = exifAlone(data, Exiv2::bigEndian);
    const QString target = exportOf(writeSource(blocks));

    const QByteArray carried = carriedOf(target, kSize, WriteFormat::Png).exif;
    EXPECT_EQ(carried.indexOf("ACME\1 offsets"), blocks.exif.indexOf("ACME\1 offsets"));
    EXPECT_TRUE(carried.contains(QByteArray(inNote.size(), '\0') + " and the end"));
    EXPECT_TRUE(carried.startsWith("MM"));
    EXPECT_FALSE(readBytes(target).contains(traceOf(inNote)));
    EXPECT_FALSE(readBytes(target).contains(traceOf(inTag)));
    const Exiv2::ExifData exif = exifOf(target);
    EXPECT_EQ(exif.findKey(Exiv2::ExifKey("Exif.Photo.PixelXDimension"))->toLong(), 40);
    EXPECT_EQ(exif.findKey(Exiv2::ExifKey("Exif.Thumbnail.Compression")), exif.end());
}

TEST_P(CarriedMetadata, LosesThePreviewsInNotesOfKnownMakers)
{
    const QByteArray picture = thumbnail(4);
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = "CASIO COMPUTER CO.,LTD.";
    setBytes(data, "Exif.Casio2.0x1234", "kept as it is");
    setBytes(data, "Exif.Casio2.PreviewImage", picture);
    const QString source = writeSource(exifAlone(data));
    ASSERT_TRUE(readBytes(source).contains(traceOf(picture)));
    const QString target = exportOf(source);
    EXPECT_FALSE(readBytes(target).contains(traceOf(picture)));
    const Exiv2::ExifData exif = exifOf(target);
    const auto hasTag = [](const Exiv2::ExifData &data, const char *name) {
        return std::any_of(data.begin(), data.end(), [=](const auto &datum) { return datum.tagName() == name; });
    };
    EXPECT_TRUE(hasTag(exifOf(source), "PreviewImage"));
    EXPECT_FALSE(hasTag(exif, "PreviewImage"));
    EXPECT_TRUE(hasTag(exif, "0x1234"));
    EXPECT_TRUE(readBytes(target).contains("kept as it is"));
}

TEST_P(CarriedMetadata, StatesTheSizeThatTheFileHas)
{
    MetadataBlocks blocks;
    blocks.exif = exifBlock({{"Exif.Photo.PixelXDimension", "4000"}, {"Exif.Photo.PixelYDimension", "30"}});
    Exiv2::ExifData exif = exifOf(exportOf(writeSource(blocks)));
    EXPECT_EQ(exif.findKey(Exiv2::ExifKey("Exif.Photo.PixelXDimension"))->toLong(), 40);
    EXPECT_EQ(exif.findKey(Exiv2::ExifKey("Exif.Photo.PixelYDimension"))->toLong(), 30);

    blocks.exif = exifBlock({{"Exif.Photo.FNumber", "4/1"}});
    exif = exifOf(exportOf(writeSource(blocks)));
    EXPECT_EQ(exif.findKey(Exiv2::ExifKey("Exif.Photo.PixelXDimension")), exif.end());
}

INSTANTIATE_TEST_SUITE_P(Formats, CarriedMetadata,
                         testing::Values(std::tuple(WriteFormat::Jpeg, WriteFormat::Jpeg),
                                         std::tuple(WriteFormat::Jpeg, WriteFormat::Png),
                                         std::tuple(WriteFormat::Png, WriteFormat::Jpeg),
                                         std::tuple(WriteFormat::Jpeg, WriteFormat::Tiff),
                                         std::tuple(WriteFormat::Tiff, WriteFormat::Jpeg),
                                         std::tuple(WriteFormat::Tiff, WriteFormat::Tiff)));

TEST(CarriedMetadataLimits, WhatDoesNotFitIntoAJpegFileIsDroppedAloneAndNotTheRest)
{
    const QTemporaryDir folder;
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = "Acme";
    setBytes(data, "Exif.Photo.MakerNote", QByteArray(70'000, 'n'));
    const MetadataBlocks blocks = exifAlone(data);
    const QString source = writePhoto(folder, WriteFormat::Png, blocks, kSize);
    EXPECT_EQ(carriedOf(source, kSize, WriteFormat::Png).exif, blocks.exif);
    const QByteArray fitting = carriedOf(source, kSize, WriteFormat::Jpeg).exif;
    EXPECT_LT(fitting.size(), 65'000);
    EXPECT_TRUE(fitting.contains("Acme"));
}

/// A directory whose entries all refer to the same far-off megabyte.
TEST(CarriedMetadataLimits, ValuesThatATiffFileRefersToAgainAndAgainAreNotAllTaken)
{
    constexpr quint64 kSizeOfValue = 512 * 1024;
    TiffMaker tiff;
    TiffEntries entries;
    for (quint16 tag = 0xf000; tag < 0xf040; ++tag)
        tiff.set(entries, tag, TiffMaker::kUndefined, kSizeOfValue, tiff.place(1024 * 1024));
    const QTemporaryDir folder;
    const QByteArray head = tiff.startingAt(tiff.directory(entries));
    const QString path =
        writeBytes(folder, QStringLiteral("a.tif"), head.leftJustified(1024 * 1024 + kSizeOfValue, 'v'));
    const qsizetype taken = readTiffBlocks(**SourceFile::open(path)).exif.size();
    EXPECT_GE(taken, 2 * qsizetype(kSizeOfValue));
    EXPECT_LT(taken, 6 * qsizetype(kSizeOfValue));
}

TEST(CarriedMetadataLimits, FormatsWithoutAPlaceForMetadataGetTheProfileAlone)
{
    const QTemporaryDir folder;
    MetadataBlocks blocks = richMetadata();
    blocks.iccProfile = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    const MetadataBlocks carried =
        carriedOf(writePhoto(folder, WriteFormat::Jpeg, blocks, kSize), kSize, WriteFormat::Gif);
    EXPECT_EQ(carried.iccProfile, blocks.iccProfile);
    EXPECT_TRUE(carried.exif.isEmpty() && carried.iptc.isEmpty() && carried.xmp.isEmpty());
}

} // namespace hazelmark
