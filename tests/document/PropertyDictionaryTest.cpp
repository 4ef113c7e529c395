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
    const QVariant absent;
    const struct
    {
        QLatin1String group;
        const char *key;
        QVariant expected;
    } entries[] = {{{}, "PixelWidth", 40},
                   {{}, "PixelHeight", 30},
                   {{}, "Depth", 8},
                   {{}, "ColorModel", u"RGB"_qs},
                   {{}, "ProfileName", u"Display P3"_qs},
                   {{}, "Orientation", 6},
                   {{}, "HasAlpha", absent},
                   {kTiffGroup, "Make", u"Acme"_qs},
                   {kExifGroup, "ExposureTime", 1 / 250.0},
                   {kExifGroup, "ISOSpeedRatings", QVariantList{400}},
                   {kExifGroup, "DigitalZoomRatio", absent},
                   {kExifGroup, "UserComment", u"on the pier"_qs},
                   {kExifGroup, "Rating", 4},
                   {kExifGroup, "LensSpecification", QVariantList{50.0, 50.0, 1.8, absent}},
                   {kExifAuxGroup, "LensModel", u"Acme 50mm"_qs},
                   {kGpsGroup, "LatitudeRef", u"S"_qs},
                   {kGpsGroup, "TimeStamp", u"09:41:07"_qs},
                   {kIptcGroup, "Caption/Abstract", u"Low tide"_qs},
                   {kIptcGroup, "Keywords", QVariantList{u"sea"_qs, u"Strand ä"_qs}}};
    for (const auto &[group, key, expected] : entries) {
        const QVariantMap map = group.isEmpty() ? dict : dict.value(group).toMap();
        EXPECT_EQ(map.value(QLatin1String(key)), expected) << key;
    }
    const QVariantMap gps = dict.value(kGpsGroup).toMap();
    for (const auto &[map, key, expected] : {std::tuple(dict, "DPIWidth", 300.0),
                                             {dict, "DPIHeight", 300.0},
                                             {gps, "Latitude", 33.86},
                                             {gps, "Longitude", 151.2}})
        EXPECT_NEAR(map.value(QLatin1String(key)).toDouble(), expected, map == gps ? 1e-9 : 0.01) << key;
}

TEST_P(PropertyDictionary, TakesRatingKeywordsAndLensFromXmpAlone)
{
    const QByteArray lens = "aux:Lens=\"Acme 24mm\" ";
    const QByteArray keywords = "<dc:subject><rdf:Bag><rdf:li>Berg</rdf:li><rdf:li>Tal</rdf:li></rdf:Bag></dc:subject>";
    const struct
    {
        const char *rating;  ///< of the EXIF block; null: none
        const char *percent; ///< the same
        QByteArray xmp;
        int expected;
    } rows[] = {{"0", "75", {}, 0},
                {nullptr, "75", {}, 4},
                {"5", "75", "xmp:Rating=\"-1\"", -1},
                {nullptr, nullptr, "xmlns:m=\"http://ns.microsoft.com/photo/1.0/\" m:Rating=\"50\"", 3}};
    for (const auto &[rating, percent, xmp, expected] : rows) {
        MetadataBlocks blocks{.xmp = xmpPacket(keywords, lens + xmp)};
        if (percent)
            blocks.exif = rating ? exifBlock({{"Exif.Image.Rating", rating}, {"Exif.Image.RatingPercent", percent}})
                                 : exifBlock({{"Exif.Image.RatingPercent", percent}});
        const ExifInfo info(dictionaryOf(blocks));
        EXPECT_EQ(info.rating().toInt(), expected);
        EXPECT_EQ(info.keywords(), QStringLiteral("Berg,Tal"));
        EXPECT_EQ(info.cameraLensModel().toString(), QStringLiteral("Acme 24mm"));
    }
}

TEST_P(PropertyDictionary, TakesTheLensFromANoteThatAloneNamesIt)
{
    const QVariantMap dict =
        dictionaryOf({.exif = exifBlock({{"Exif.Image.Make", "Minolta Co., Ltd."}, {"Exif.Minolta.LensID", "3"}})});
    const QString lens = dict.value(kExifAuxGroup).toMap().value(QStringLiteral("LensModel")).toString();
    EXPECT_TRUE(lens.startsWith(QLatin1String("Minolta AF "))) << lens.toStdString();
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
    std::vector<std::jthread> threads;
    std::atomic<int> different = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 25; ++round)
                different += hazelmark::dictionaryOf(path) != expected;
        });
    }
    threads.clear();
    EXPECT_EQ(different, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, PropertyDictionary,
                         testing::Values(WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff));

} // namespace hazelmark
