#include "ExifInfo.h"

#include "SamplePhotos.h"

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QVariantMap mapOf(std::initializer_list<std::pair<const char *, QVariant>> entries)
{
    QVariantMap map;
    for (const auto &[key, object] : entries)
        map.insert(QLatin1String(key), object);
    return map;
}

} // namespace

TEST(ExifInfo, AFreshRecordHasEveryObjectAbsentAndEveryNumberZero)
{
    const RecordFields fields = ExifInfo().fields();
    EXPECT_EQ(fields.size(), 46);
    EXPECT_EQ(fields.front().first, QStringLiteral("fileName"));
    EXPECT_EQ(fields.back().first, QStringLiteral("imageSizeToDisplay"));
    for (const auto &[name, value] : fields)
        EXPECT_TRUE(!value.isValid() || value.toDouble() == 0.0) << name.toStdString();
    EXPECT_TRUE(ExifInfo(std::optional<QVariantMap>()).imageSize().isNull());
}

TEST(ExifInfo, OnlyTheSizeToDisplayFollowsTheTopLevelOrientation)
{
    for (const int orientation : {0, 1, 4, 5, 6, 7, 8, 9}) {
        const ExifInfo info(mapOf({{"PixelWidth", 4000.0}, {"PixelHeight", 3000.0}, {"Orientation", orientation}}));
        const bool isTurned = orientation >= 5 && orientation <= 8;
        EXPECT_EQ(info.imageSize(), QStringLiteral("4000 x 3000"));
        EXPECT_EQ(info.imageSizeToDisplay(), isTurned ? QStringLiteral("3000 x 4000") : QStringLiteral("4000 x 3000"));
        EXPECT_EQ(info.pixelWidth(), 4000);
        EXPECT_EQ(info.orientation(), 0);
    }
    const ExifInfo info(mapOf({{"{TIFF}", mapOf({{"Orientation", 6}})}}));
    EXPECT_EQ(info.orientation(), 6);
    EXPECT_EQ(info.imageSize(), QStringLiteral("(null) x (null)"));
    EXPECT_EQ(info.imageSizeToDisplay(), QStringLiteral("0 x 0"));
}

TEST(ExifInfo, ResolutionsAreCrossedAndNeedBoth)
{
    ExifInfo info(mapOf({{"DPIWidth", 300}, {"DPIHeight", 72.0}}));
    EXPECT_EQ(info.imageDPI(), QStringLiteral("300.0 x 72.0"));
    EXPECT_EQ(info.dpiHeight(), 300.0);
    EXPECT_EQ(info.dpiWidth(), 72.0);

    info.resetAllWithDict(mapOf({{"DPIWidth", 150}}));
    EXPECT_EQ(info.imageDPI(), QStringLiteral("300.0 x 72.0"));
    EXPECT_EQ(info.dpiHeight(), 0.0);
    EXPECT_EQ(info.dpiWidth(), 0.0);
}

TEST(ExifInfo, ExposureIsFormattedAsTheSummaryShowsIt)
{
    ExifInfo info(mapOf({{"{Exif}", mapOf({{"FocalLength", 4.2},
                                           {"ExposureBiasValue", -0.333},
                                           {"ISOSpeedRatings", QVariantList{100, 200}},
                                           {"Flash", 16},
                                           {"Rating", 3}})}}));
    EXPECT_EQ(info.folcalLength().toString(), QStringLiteral("4.2 mm"));
    EXPECT_EQ(info.exposureBias().toString(), QStringLiteral("-0.33 EV"));
    EXPECT_EQ(info.exposureMode().toDouble(), -0.333);
    EXPECT_EQ(info.isoSpeedRating(), QStringLiteral("100,200"));
    EXPECT_EQ(info.flashFired(), 1);
    EXPECT_EQ(info.rating().toInt(), 3);

    // A second dictionary changes what it has and leaves the rest.
    info.resetAllWithDict(mapOf({{"{Exif}", mapOf({{"FocalLength", 50.0}, {"Flash", qlonglong(0)}})}}));
    EXPECT_EQ(info.folcalLength().toString(), QStringLiteral("50 mm"));
    EXPECT_EQ(info.flashFired(), 0);
    EXPECT_EQ(info.isoSpeedRating(), QStringLiteral("100,200"));
    EXPECT_EQ(info.exposureBias().toString(), QStringLiteral("-0.33 EV"));
    info.resetAllWithDict(mapOf({{"{IPTC}", mapOf({{"Keywords", QVariantList{QStringLiteral("a b"), 7}}})}}));
    EXPECT_EQ(info.keywords(), QStringLiteral("a b,7"));
    info.resetAllWithDict(std::nullopt);
    EXPECT_EQ(info.flashFired(), 0);
    EXPECT_EQ(info.keywords(), QStringLiteral("a b,7"));
}

TEST(ExifInfo, OddObjectsAreReadAsFarAsTheyGo)
{
    const ExifInfo info(mapOf({{"PixelWidth", QStringLiteral("4000 pixels")},
                               {"PixelHeight", 1e30},
                               {"{TIFF}", 5},
                               {"{GPS}", mapOf({{"Altitude", -2.5}})}}));
    EXPECT_EQ(info.pixelWidth(), 4000);
    EXPECT_EQ(info.pixelHeight(), std::numeric_limits<int>::max());
    EXPECT_EQ(info.imageSize(), QStringLiteral("4000 pixels x 1e+30"));
    EXPECT_EQ(info.gpsAltitude(), -2.5);
}

} // namespace hazelmark
