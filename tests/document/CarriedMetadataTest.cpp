#include "Decoder.h"
#include "IptcRecords.h"
#include "OpenPhotos.h"
#include "SamplePhotos.h"
#include "TiffTags.h"

#include <QColorSpace>
#include <QTemporaryDir>

#include <exiv2/exiv2.hpp>
#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QByteArray exifBlock(const Exiv2::ExifData &data, Exiv2::ByteOrder order = Exiv2::littleEndian)
{
    Exiv2::MemIo io;
    Exiv2::TiffParser::encode(io, nullptr, 0, order, data, {}, {});
    return QByteArray(reinterpret_cast<const char *>(io.mmap()), qsizetype(io.size()));
}

void setBytes(Exiv2::ExifData &data, const char *key, const QByteArray &bytes)
{
    data[key] = Exiv2::DataValue(reinterpret_cast<const Exiv2::byte *>(bytes.constData()), long(bytes.size()));
}

Exiv2::ExifData exifOf(const QString &path)
{
    const auto image = Exiv2::ImageFactory::open(path.toStdString());
    image->readMetadata();
    return image->exifData();
}

} // namespace

class CarriedMetadata : public testing::TestWithParam<std::pair<WriteFormat, WriteFormat>>
{
protected:
    QString writeSource(const MetadataBlocks &blocks) { return writePhoto(m_sources, GetParam().first, blocks); }
    /// The written file of the same size, with what it carries.
    QString exportOf(const QString &source)
    {
        return writePhoto(m_targets, GetParam().second, carriedOf(source, GetParam().second));
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
    EXPECT_EQ((*Photo::open(target))->info().iccProfile, blocks.iccProfile);
    const MetadataBlocks again = carriedOf(target, GetParam().second);
    EXPECT_EQ(again.iptc, blocks.iptc);
    EXPECT_TRUE(again.xmp.contains("<xmp:Rating>4</xmp:Rating>"));

    const Exiv2::ExifData after = exifOf(target);
    EXPECT_EQ(after.findKey(Exiv2::ExifKey("Exif.Photo.PixelXDimension")), after.end()) << "the source has none";
    for (const Exiv2::Exifdatum &datum : exifOf(source)) {
        if (datum.groupName() == "Image" && (isTiffStorageTag(datum.tag()) || isTiffDataTag(datum.tag())))
            continue;
        const auto found = after.findKey(Exiv2::ExifKey(datum.key()));
        ASSERT_NE(found, after.end()) << datum.key();
        const bool isOffset = datum.tagName() == "ExifTag" || datum.tagName() == "GPSTag";
        EXPECT_TRUE(isOffset || found->toString() == datum.toString()) << datum.key();
    }
}

TEST_P(CarriedMetadata, KeepsANoteInItsPlaceWithoutItsPicturesAndStatesTheSize)
{
    const QByteArray inNote = hiddenJpeg(2);
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = "Acme";
    setBytes(data, "Exif.Photo.MakerNote", "ACME\1 offsets from the start of the block " + inNote + " and the end");
    const std::tuple<const char *, int, const char *> sizes[] = {{"Exif.Image.ImageWidth", 4000, "40"},
                                                                 {"Exif.Image.ImageLength", 3000, "30"},
                                                                 {"Exif.Photo.PixelXDimension", 4000, "40"},
                                                                 {"Exif.Photo.PixelYDimension", 30, "30"}};
    for (const auto &[key, stated, real] : sizes)
        data[key] = uint32_t(stated);
    const QByteArray block = exifBlock(data, Exiv2::bigEndian);
    const QString target = exportOf(writeSource({.exif = block}));

    const QByteArray carried = carriedOf(target, WriteFormat::Png).exif;
    EXPECT_EQ(carried.indexOf("ACME\1 offsets"), block.indexOf("ACME\1 offsets"));
    EXPECT_TRUE(carried.contains(QByteArray(inNote.size(), '\0') + " and the end"));
    EXPECT_TRUE(carried.startsWith("MM"));
    EXPECT_FALSE(readBytes(target).contains(inNote.right(40).left(24)));
    const Exiv2::ExifData exif = exifOf(target);
    for (const auto &[key, stated, real] : sizes) {
        const auto found = exif.findKey(Exiv2::ExifKey(key));
        EXPECT_TRUE(found == exif.end() ? GetParam().first == WriteFormat::Tiff : found->toString() == real) << key;
    }
}

TEST_P(CarriedMetadata, LosesThePreviewsInNotesOfKnownMakers)
{
    const QByteArray picture = hiddenJpeg(4).mid(30); // known by its tag alone
    const QByteArray trace = picture.right(40).left(24);
    for (const auto &[make, preview, other] :
         {std::tuple("CASIO COMPUTER CO.,LTD.", "Exif.Casio2.PreviewImage", "Exif.Casio2.0x1234"),
          {"OLYMPUS OPTICAL CO.,LTD", "Exif.Olympus.0x0088", "Exif.Olympus.0x1234"},
          {"OLYMPUS OPTICAL CO.,LTD", "Exif.Olympus.ThumbnailImage", "Exif.Olympus.0x0f00"}}) {
        Exiv2::ExifData data;
        data["Exif.Image.Make"] = make;
        setBytes(data, other, "kept as it is");
        setBytes(data, preview, picture);
        const QString source = writeSource({.exif = exifBlock(data)});
        ASSERT_TRUE(readBytes(source).contains(trace)) << preview;
        const QString target = exportOf(source);
        EXPECT_FALSE(readBytes(target).contains(trace)) << preview;
        const Exiv2::ExifData exif = exifOf(target);
        EXPECT_EQ(exif.findKey(Exiv2::ExifKey(preview)), exif.end());
        EXPECT_NE(exif.findKey(Exiv2::ExifKey(other)), exif.end()) << other;
        EXPECT_TRUE(readBytes(target).contains("kept as it is"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Formats, CarriedMetadata,
    testing::Values(std::pair(WriteFormat::Jpeg, WriteFormat::Jpeg), std::pair(WriteFormat::Jpeg, WriteFormat::Png),
                    std::pair(WriteFormat::Png, WriteFormat::Jpeg), std::pair(WriteFormat::Jpeg, WriteFormat::Tiff),
                    std::pair(WriteFormat::Tiff, WriteFormat::Jpeg), std::pair(WriteFormat::Tiff, WriteFormat::Tiff)));

TEST(CarriedMetadataLimits, WhatDoesNotFitIntoAJpegFileIsDroppedAloneAndNotTheRest)
{
    const QTemporaryDir folder;
    Exiv2::ExifData data;
    data["Exif.Image.Make"] = "Acme";
    setBytes(data, "Exif.Photo.MakerNote", QByteArray(70'000, 'n'));
    const MetadataBlocks blocks{.exif = exifBlock(data)};
    const QString source = writePhoto(folder, WriteFormat::Png, blocks);
    EXPECT_EQ(carriedOf(source, WriteFormat::Png).exif, blocks.exif);
    const QByteArray fitting = carriedOf(source, WriteFormat::Jpeg).exif;
    EXPECT_LT(fitting.size(), 65'000);
    EXPECT_TRUE(fitting.contains("Acme"));
}

TEST(CarriedMetadataLimits, IptcGoesWithoutPreviewsObjectsAndLargeUnknowns)
{
    const struct
    {
        int record;
        int dataSet;
        int size;
        bool isKept;
    } rows[] = {{6, 1, 1, true},       {7, 1, 1, false},     {9, 1, 1, false},      {10, 1, 1, true},
                {3, 201, 1, true},     {2, 199, 1, true},    {2, 200, 1, false},    {2, 202, 1, false},
                {2, 203, 1, true},     {2, 250, 4096, true}, {2, 250, 4097, false}, {3, 120, 4097, false},
                {2, 120, 0x7fff, true}};
    // Longer values state how long their length is.
    const QByteArray longer = QByteArray("\x1c\2\x78\x80\4\0\0\x9c\x40", 9) + QByteArray(40'000, 'c');
    QByteArray all = longer;
    QByteArray kept = longer;
    for (const auto &[record, dataSet, size, isKept] : rows) {
        const QByteArray bytes = iptcDataSet(dataSet, QByteArray(size, 'x'), record);
        all += bytes + QByteArray(all.size() % 3, '\0'); // some writers pad
        kept += isKept ? bytes : QByteArray();
    }
    EXPECT_EQ(iptcRecords(iptcDataSet(25, "k").repeated(1'000'001)).size(), 1'000'000U);
    for (const QByteArray &rest : {QByteArray(5, '\0'), longer.chopped(1), QByteArray("\x1c\2\x78\0", 4)}) {
        LeftOut leftOut;
        EXPECT_EQ(carriedIptc(all + rest, leftOut), kept);
        EXPECT_EQ(leftOut.text().contains(QLatin1String("behind")), rest.contains('\2'))
            << leftOut.text().toStdString();
    }
}

} // namespace hazelmark
