#include "ExifInfo.h"

#include "SamplePhotos.h"

#include <gtest/gtest.h>

namespace hazelmark {

namespace {

QVariantMap sizes(double width, double height, const QVariant &orientation = {})
{
    QVariantMap dict{{QStringLiteral("PixelWidth"), width}, {QStringLiteral("PixelHeight"), height}};
    if (orientation.isValid())
        dict.insert(QStringLiteral("Orientation"), orientation);
    return dict;
}

QVariantMap group(const char *name, const QVariantMap &entries)
{
    return {{QLatin1String(name), entries}};
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
        const ExifInfo info(sizes(4000, 3000, orientation));
        const bool isTurned = orientation >= 5 && orientation <= 8;
        EXPECT_EQ(info.imageSize(), QStringLiteral("4000 x 3000"));
        EXPECT_EQ(info.imageSizeToDisplay(), isTurned ? QStringLiteral("3000 x 4000") : QStringLiteral("4000 x 3000"));
        EXPECT_EQ(info.pixelWidth(), 4000);
        EXPECT_EQ(info.orientation(), 0);
    }
    const ExifInfo info(group("{TIFF}", {{QStringLiteral("Orientation"), 6}}));
    EXPECT_EQ(info.orientation(), 6);
    EXPECT_EQ(info.imageSize(), QStringLiteral("(null) x (null)"));
    EXPECT_EQ(info.imageSizeToDisplay(), QStringLiteral("0 x 0"));
}

TEST(ExifInfo, ResolutionsAreCrossedAndNeedBoth)
{
    ExifInfo info(QVariantMap{{QStringLiteral("DPIWidth"), 300}, {QStringLiteral("DPIHeight"), 72.0}});
    EXPECT_EQ(info.imageDPI(), QStringLiteral("300.0 x 72.0"));
    EXPECT_EQ(info.dpiHeight(), 300.0);
    EXPECT_EQ(info.dpiWidth(), 72.0);

    info.resetAllWithDict(QVariantMap{{QStringLiteral("DPIWidth"), 150}});
    EXPECT_EQ(info.imageDPI(), QStringLiteral("300.0 x 72.0"));
    EXPECT_EQ(info.dpiHeight(), 0.0);
    EXPECT_EQ(info.dpiWidth(), 0.0);
}

TEST(ExifInfo, ExposureIsFormattedAsTheSummaryShowsIt)
{
    ExifInfo info(group("{Exif}", {{QStringLiteral("FocalLength"), 4.2},
                                   {QStringLiteral("ExposureBiasValue"), -0.333},
                                   {QStringLiteral("ISOSpeedRatings"), QVariantList{100, 200}},
                                   {QStringLiteral("Flash"), 16},
                                   {QStringLiteral("Rating"), 3}}));
    EXPECT_EQ(info.folcalLength().toString(), QStringLiteral("4.2 mm"));
    EXPECT_EQ(info.exposureBias().toString(), QStringLiteral("-0.33 EV"));
    EXPECT_EQ(info.exposureMode().toDouble(), -0.333);
    EXPECT_EQ(info.isoSpeedRating(), QStringLiteral("100,200"));
    EXPECT_EQ(info.flashFired(), 1);
    EXPECT_EQ(info.rating().toInt(), 3);

    // A second dictionary changes what it has and leaves the rest.
    info.resetAllWithDict(
        group("{Exif}", {{QStringLiteral("FocalLength"), 50.0}, {QStringLiteral("Flash"), qlonglong(0)}}));
    EXPECT_EQ(info.folcalLength().toString(), QStringLiteral("50 mm"));
    EXPECT_EQ(info.flashFired(), 0);
    EXPECT_EQ(info.isoSpeedRating(), QStringLiteral("100,200"));
    EXPECT_EQ(info.exposureBias().toString(), QStringLiteral("-0.33 EV"));
}

TEST(ExifInfo, ASecondDictionaryWithoutSizesKeepsThem)
{
    ExifInfo info(sizes(4000, 3000, 6));
    info.resetAllWithDict(group("{IPTC}", {{QStringLiteral("Keywords"), QVariantList{QStringLiteral("a b"), 7}}}));
    EXPECT_EQ(info.imageSize(), QStringLiteral("4000 x 3000"));
    EXPECT_EQ(info.imageSizeToDisplay(), QStringLiteral("3000 x 4000"));
    EXPECT_EQ(info.keywords(), QStringLiteral("a b,7"));
    info.resetAllWithDict(std::nullopt);
    EXPECT_EQ(info.pixelHeight(), 3000);
}

TEST(ExifInfo, OddObjectsAreReadAsFarAsTheyGo)
{
    const ExifInfo info(QVariantMap{{QStringLiteral("PixelWidth"), QStringLiteral("4000 pixels")},
                                    {QStringLiteral("PixelHeight"), 1e30},
                                    {QStringLiteral("{TIFF}"), 5},
                                    {QStringLiteral("{GPS}"), QVariantMap{{QStringLiteral("Altitude"), -2.5}}}});
    EXPECT_EQ(info.pixelWidth(), 4000);
    EXPECT_EQ(info.pixelHeight(), std::numeric_limits<int>::max());
    EXPECT_EQ(info.imageSize(), QStringLiteral("4000 pixels x 1e+30"));
    EXPECT_EQ(info.gpsAltitude(), -2.5);
}

} // namespace hazelmark
