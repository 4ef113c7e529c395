#include "PropertyDictionary.h"

#include "ExifInfo.h"
#include "SamplePhotos.h"

#include <QColorSpace>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

namespace hazelmark {

class PropertyDictionary : public testing::TestWithParam<WriteFormat>
{
protected:
    QVariantMap dictionaryOf(const MetadataBlocks &blocks)
    {
        return readPropertyDictionary(writePhoto(m_folder, GetParam(), blocks)).value_or(QVariantMap());
    }

    const QTemporaryDir m_folder;
};

TEST_P(PropertyDictionary, HasWhatTheFileSaysUnderStandardNames)
{
    MetadataBlocks blocks = richMetadata();
    blocks.iccProfile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    blocks.dpi = QSizeF(300, 300);
    const QVariantMap dict = dictionaryOf(blocks);
    EXPECT_EQ(dict.value(QStringLiteral("PixelWidth")), QVariant(qlonglong(40)));
    EXPECT_EQ(dict.value(QStringLiteral("Depth")).toInt(), 8);
    EXPECT_EQ(dict.value(QStringLiteral("ColorModel")).toString(), QStringLiteral("RGB"));
    EXPECT_NEAR(dict.value(QStringLiteral("DPIWidth")).toDouble(), 300.0, 0.01);
    EXPECT_EQ(dict.value(QStringLiteral("ProfileName")).toString(), QStringLiteral("Display P3"));
    EXPECT_FALSE(dict.contains(QStringLiteral("HasAlpha")));
    EXPECT_EQ(dict.value(QStringLiteral("Orientation")).toInt(), 6);

    const QVariantMap tiff = dict.value(kTiffGroup).toMap();
    EXPECT_EQ(tiff.value(QStringLiteral("Orientation")).toInt(), 6);
    EXPECT_EQ(tiff.value(QStringLiteral("Make")).toString(), QStringLiteral("Acme"));

    const QVariantMap exif = dict.value(kExifGroup).toMap();
    EXPECT_EQ(exif.value(QStringLiteral("ExposureTime")).toDouble(), 1 / 250.0);
    EXPECT_EQ(exif.value(QStringLiteral("ISOSpeedRatings")).toList(), QVariantList{qlonglong(400)});
    EXPECT_EQ(exif.value(QStringLiteral("SubjectDistance")).toDouble(), 4294967295.0);
    EXPECT_FALSE(exif.contains(QStringLiteral("DigitalZoomRatio")));
    EXPECT_EQ(exif.value(QStringLiteral("UserComment")).toString(), QStringLiteral("on the pier"));
    EXPECT_EQ(exif.value(QStringLiteral("ExifVersion")).toString(), QStringLiteral("0230"));
    EXPECT_EQ(exif.value(QStringLiteral("Rating")).toInt(), 4);
    EXPECT_EQ(exif.value(QStringLiteral("LensModel")).toString(), QStringLiteral("Acme 50mm"));
    EXPECT_FALSE(exif.value(QStringLiteral("LensSpecification")).toList().at(3).isValid());
    EXPECT_EQ(dict.value(kExifAuxGroup).toMap().value(QStringLiteral("LensModel")).toString(),
              QStringLiteral("Acme 50mm"));

    const QVariantMap gps = dict.value(kGpsGroup).toMap();
    EXPECT_NEAR(gps.value(QStringLiteral("Latitude")).toDouble(), 33.86, 1e-9);
    EXPECT_EQ(gps.value(QStringLiteral("LatitudeRef")).toString(), QStringLiteral("S"));
    EXPECT_NEAR(gps.value(QStringLiteral("Longitude")).toDouble(), 151.2, 1e-9);
    EXPECT_EQ(gps.value(QStringLiteral("TimeStamp")).toString(), QStringLiteral("09:41:07"));

    const QVariantMap iptc = dict.value(kIptcGroup).toMap();
    EXPECT_EQ(iptc.value(QStringLiteral("Caption/Abstract")).toString(), QStringLiteral("Low tide"));
    EXPECT_EQ(ExifInfo(dict).keywords(), QStringLiteral("sea,Strand ä"));
}

TEST_P(PropertyDictionary, OfAPlainPictureHasNoGroups)
{
    const QVariantMap dict = dictionaryOf({});
    for (const QLatin1String group : {kExifGroup, kGpsGroup, kIptcGroup, kExifAuxGroup})
        EXPECT_FALSE(dict.contains(group)) << group.data();
    EXPECT_EQ(dict.contains(kTiffGroup), GetParam() == WriteFormat::Tiff);
    EXPECT_FALSE(dict.contains(QStringLiteral("Orientation")));
    EXPECT_FALSE(dict.contains(QStringLiteral("ProfileName")));
    EXPECT_EQ(ExifInfo(dict).imageSize(), QStringLiteral("40 x 30"));
}

TEST_P(PropertyDictionary, TakesRatingKeywordsAndLensFromXmpAlone)
{
    MetadataBlocks blocks;
    blocks.exif = exifBlock({{"Exif.Image.Rating", "0"}, {"Exif.Image.RatingPercent", "75"}});
    EXPECT_EQ(ExifInfo(dictionaryOf(blocks)).rating().toInt(), 0);
    blocks.exif = exifBlock({{"Exif.Image.RatingPercent", "75"}});
    EXPECT_EQ(ExifInfo(dictionaryOf(blocks)).rating().toInt(), 4);
    blocks.xmp = xmpPacket("<dc:subject><rdf:Bag><rdf:li>Berg</rdf:li><rdf:li>Tal</rdf:li></rdf:Bag></dc:subject>",
                           "xmp:Rating=\"-1\" aux:Lens=\"Acme 24mm\"");
    const ExifInfo info(dictionaryOf(blocks));
    EXPECT_EQ(info.rating().toInt(), -1);
    EXPECT_EQ(info.keywords(), QStringLiteral("Berg,Tal"));
    EXPECT_EQ(info.cameraLensModel().toString(), QStringLiteral("Acme 24mm"));
}

TEST_P(PropertyDictionary, ABrokenBlockDoesNotTakeTheOthersAlong)
{
    MetadataBlocks blocks = richMetadata();
    blocks.exif = QByteArray("II*\0\xff\xff\xff\x7f garbage", 16);
    blocks.xmp = "<x:xmpmeta><unclosed";
    const QVariantMap dict = dictionaryOf(blocks);
    EXPECT_FALSE(dict.contains(kExifGroup));
    EXPECT_EQ(ExifInfo(dict).keywords(), QStringLiteral("sea,Strand ä"));
}

TEST_P(PropertyDictionary, IsReadFromSeveralThreadsAtOnce)
{
    const QString path = writePhoto(m_folder, GetParam(), richMetadata());
    const std::optional<QVariantMap> expected = readPropertyDictionary(path);
    std::vector<std::thread> threads;
    std::atomic<int> different = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 25; ++round)
                different += readPropertyDictionary(path) != expected;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(different, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, PropertyDictionary,
                         testing::Values(WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff));

} // namespace hazelmark
