#include "PropertyDictionary.h"

#include "ExifInfo.h"
#include "OpenPhotos.h"
#include "ParallelFor.h"
#include "SamplePhotos.h"

#include <QColorSpace>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>

namespace hazelmark {

class PropertyDictionary : public testing::TestWithParam<WriteFormat>
{
protected:
    const QTemporaryDir m_folder;
};

TEST_P(PropertyDictionary, HasWhatTheFileSaysUnderStandardNames)
{
    MetadataBlocks blocks = richMetadata();
    blocks.iccProfile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    blocks.dpi = QSizeF(300, 150);
    QVariantMap dict = dictionaryOf(writePhoto(m_folder, GetParam(), blocks));
    EXPECT_NEAR(dict.take(QStringLiteral("DPIWidth")).toDouble(), 300, 0.02);
    EXPECT_NEAR(dict.take(QStringLiteral("DPIHeight")).toDouble(), 150, 0.02);
    QVariantMap tiff = dict[kTiffGroup].toMap();
    for (const char *key : {"Compression", "PhotometricInterpretation", "ResolutionUnit", "XResolution", "YResolution"})
        EXPECT_EQ(tiff.remove(QLatin1String(key)), GetParam() == WriteFormat::Tiff ? 1 : 0) << key;
    dict[kTiffGroup] = tiff;
    const QJsonDocument expected = QJsonDocument::fromJson(R"({
        "PixelWidth": 40, "PixelHeight": 30, "Depth": 8, "ColorModel": "RGB", "ProfileName": "Display P3",
        "Orientation": 6,
        "{TIFF}": {"Make": "Acme", "Model": "Acme One", "Orientation": 6, "Software": "Studio 4"},
        "{Exif}": {"ExposureTime": 0.004, "FNumber": 2.8, "ISOSpeedRatings": [400], "Flash": 16, "FocalLength": 4.2,
                   "ExposureBiasValue": -0.3333333333333333, "UserComment": "the pier", "Rating": 4,
                   "LensModel": "Acme 50mm", "LensSpecification": [50, 50, 1.8, null], "ExifVersion": "0230",
                   "SubjectArea": [1, 2, 3], "SceneType": 1},
        "{ExifAux}": {"LensModel": "Acme 50mm", "LensInfo": [50, 50, 1.8, null]},
        "{GPS}": {"LatitudeRef": "S", "Latitude": 33.86, "LongitudeRef": "E", "Longitude": 151.2, "Altitude": 12.5,
                  "TimeStamp": "09:41:07", "AreaInformation": "bay"},
        "{IPTC}": {"Caption/Abstract": "Low tide", "Keywords": ["sea", "Strand ä"]}})");
    EXPECT_EQ(QJsonDocument(QJsonObject::fromVariantMap(dict)).toJson().toStdString(), expected.toJson().toStdString());
}

TEST_P(PropertyDictionary, TakesRatingKeywordsAndLensFromXmpAlone)
{
    const QByteArray lens = "aux:Lens=\"Acme 24mm\" ";
    const QByteArray keywords = "<dc:subject><rdf:Bag><rdf:li>Berg</rdf:li><rdf:li>Tal</rdf:li></rdf:Bag></dc:subject>";
    const QByteArray percent = exifBlock({{"Exif.Image.RatingPercent", "75"}});
    const std::tuple<QByteArray, QByteArray, int> rows[] = {
        {exifBlock({{"Exif.Image.Rating", "0"}, {"Exif.Image.RatingPercent", "75"}}), {}, 0},
        {percent, {}, 4},
        {percent, "xmp:Rating=\"-1\"", -1},
        {{}, "xmlns:m=\"http://ns.microsoft.com/photo/1.0/\" m:Rating=\"50\"", 3},
        {{}, "xmlns:m=\"http://ns.microsoft.com/photo/1.0/\" m:Rating=\"88\"", 5}};
    for (const auto &[exif, xmp, expected] : rows) {
        const MetadataBlocks blocks{.exif = exif, .xmp = xmpPacket(keywords, lens + xmp)};
        const ExifInfo info(dictionaryOf(writePhoto(m_folder, GetParam(), blocks)));
        EXPECT_EQ(info.rating().toInt(), expected);
        EXPECT_EQ(info.keywords(), QStringLiteral("Berg,Tal"));
        EXPECT_EQ(info.cameraLensModel().toString(), QStringLiteral("Acme 24mm"));
    }
}

TEST_P(PropertyDictionary, TakesTheLensFromANoteThatAloneNamesIt)
{
    const QVariantMap dict = dictionaryOf(
        writePhoto(m_folder, GetParam(),
                   {.exif = exifBlock({{"Exif.Image.Make", "Minolta Co., Ltd."}, {"Exif.Minolta.LensID", "3"}})}));
    const QString lens = dict.value(kExifAuxGroup).toMap().value(QStringLiteral("LensModel")).toString();
    EXPECT_TRUE(lens.startsWith(QLatin1String("Minolta AF "))) << lens.toStdString();
}

TEST_P(PropertyDictionary, ABrokenBlockDoesNotTakeTheOthersAlong)
{
    MetadataBlocks blocks = richMetadata();
    blocks.exif = QByteArray("II*\0\xff\xff\xff\x7f garbage", 16);
    blocks.xmp = "<x:xmpmeta><unclosed";
    const QVariantMap dict = dictionaryOf(writePhoto(m_folder, GetParam(), blocks));
    EXPECT_FALSE(dict.contains(kExifGroup));
    EXPECT_EQ(ExifInfo(dict).keywords(), QStringLiteral("sea,Strand ä"));
}

TEST_P(PropertyDictionary, IsReadFromSeveralThreadsAtOnce)
{
    const QString path = writePhoto(m_folder, GetParam(), richMetadata());
    const QVariantMap expected = dictionaryOf(path);
    std::atomic<int> different = 0;
    parallelFor(100, 4, [&](int) { different += dictionaryOf(path) != expected; });
    EXPECT_EQ(different, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, PropertyDictionary,
                         testing::Values(WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff));

} // namespace hazelmark
