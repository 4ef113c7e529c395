#include "PropertyDictionary.h"

#include "ExifInfo.h"
#include "OpenPhotos.h"
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
        return hazelmark::dictionaryOf(writePhoto(m_folder, GetParam(), blocks)).value_or(QVariantMap());
    }

    const QTemporaryDir m_folder;
};

TEST_P(PropertyDictionary, HasWhatTheFileSaysUnderStandardNames)
{
    MetadataBlocks blocks = richMetadata();
    blocks.iccProfile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    blocks.dpi = QSizeF(300, 300);
    const QVariantMap dict = dictionaryOf(blocks);
    const struct
    {
        QLatin1String group;
        const char *key;
        QVariant expected;
    } entries[] = {{{}, "PixelWidth", 40},
                   {{}, "Depth", 8},
                   {{}, "ColorModel", u"RGB"_qs},
                   {{}, "ProfileName", u"Display P3"_qs},
                   {{}, "Orientation", 6},
                   {kTiffGroup, "Orientation", 6},
                   {kTiffGroup, "Make", u"Acme"_qs},
                   {kExifGroup, "ExposureTime", 1 / 250.0},
                   {kExifGroup, "ISOSpeedRatings", QVariantList{400}},
                   {kExifGroup, "SubjectDistance", 4294967295.0},
                   {kExifGroup, "UserComment", u"on the pier"_qs},
                   {kExifGroup, "ExifVersion", u"0230"_qs},
                   {kExifGroup, "Rating", 4},
                   {kExifGroup, "LensModel", u"Acme 50mm"_qs},
                   {kExifAuxGroup, "LensModel", u"Acme 50mm"_qs},
                   {kGpsGroup, "LatitudeRef", u"S"_qs},
                   {kGpsGroup, "TimeStamp", u"09:41:07"_qs},
                   {kIptcGroup, "Caption/Abstract", u"Low tide"_qs}};
    for (const auto &[group, key, expected] : entries) {
        const QVariantMap map = group.isEmpty() ? dict : dict.value(group).toMap();
        EXPECT_EQ(map.value(QLatin1String(key)), expected) << key;
    }
    EXPECT_NEAR(dict.value(QStringLiteral("DPIWidth")).toDouble(), 300.0, 0.01);
    EXPECT_FALSE(dict.contains(QStringLiteral("HasAlpha")));
    const QVariantMap exif = dict.value(kExifGroup).toMap();
    EXPECT_FALSE(exif.contains(QStringLiteral("DigitalZoomRatio")));
    EXPECT_FALSE(exif.value(QStringLiteral("LensSpecification")).toList().at(3).isValid());
    const QVariantMap gps = dict.value(kGpsGroup).toMap();
    EXPECT_NEAR(gps.value(QStringLiteral("Latitude")).toDouble(), 33.86, 1e-9);
    EXPECT_NEAR(gps.value(QStringLiteral("Longitude")).toDouble(), 151.2, 1e-9);
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
    const std::optional<QVariantMap> expected = hazelmark::dictionaryOf(path);
    std::vector<std::thread> threads;
    std::atomic<int> different = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 25; ++round)
                different += hazelmark::dictionaryOf(path) != expected;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(different, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, PropertyDictionary,
                         testing::Values(WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff));

TEST(PropertyDictionaryLimits, HugeCountsAndLongTextsAreBounded)
{
    const QTemporaryDir folder;
    MetadataBlocks blocks;
    QByteArray exif("II*\0\x08\0\0\0\x02\0", 10);
    exif += QByteArray("\x0e\x01\x02\0\xff\xff\xff\xff\x26\0\0\0", 12); // a text of four gigabytes
    exif += QByteArray("\x12\x01\x03\0\x01\0\0\0\x06\0\0\0", 12);       // and a sound orientation
    exif += QByteArray(4, '\0') + QByteArray(20, 'x');
    blocks.exif = exif;
    const auto dict = dictionaryOf(writePhoto(folder, WriteFormat::Jpeg, blocks));
    ASSERT_TRUE(dict);
    EXPECT_EQ(dict->value(QStringLiteral("Orientation")).toInt(), 6);
    EXPECT_FALSE(dict->value(kTiffGroup).toMap().contains(QStringLiteral("ImageDescription")));

    blocks.exif = exifBlock({{"Exif.Image.ImageDescription", std::string(1'000'000, 'x').c_str()}});
    const auto longText = dictionaryOf(writePhoto(folder, WriteFormat::Png, blocks));
    ASSERT_TRUE(longText);
    EXPECT_LE(longText->value(kTiffGroup).toMap().value(QStringLiteral("ImageDescription")).toString().size(), 65536);
}

} // namespace hazelmark
