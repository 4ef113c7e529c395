#include "ExifInfo.h"

#include "SamplePhotos.h"

#include <gtest/gtest.h>

namespace hazelmark {

TEST(ExifInfo, OnlyTheSizeToDisplayFollowsTheTopLevelOrientation)
{
    for (const int orientation : {0, 1, 4, 5, 6, 7, 8, 9}) {
        const ExifInfo info(
            QVariantMap{{u"PixelWidth"_qs, 4000.0}, {u"PixelHeight"_qs, 3000.0}, {u"Orientation"_qs, orientation}});
        const bool isTurned = orientation >= 5 && orientation <= 8;
        EXPECT_EQ(info.imageSize(), QStringLiteral("4000 x 3000"));
        EXPECT_EQ(info.imageSizeToDisplay(), isTurned ? QStringLiteral("3000 x 4000") : QStringLiteral("4000 x 3000"));
        EXPECT_EQ(info.orientation(), 0);
    }
}

TEST(ExifInfo, EachFieldIsShownAsTheSummaryHasIt)
{
    const QVariantList list{u"a b"_qs, 7};
    const struct
    {
        const char *group; ///< empty: the top level
        const char *key;
        QVariant object;
        const char *field;
        QVariant expected;
    } rows[] = {{"", "PixelWidth", u"4000 pixels"_qs, "pixelWidth", 4000},
                {"", "PixelHeight", 1e30, "imageSize", u"(null) x 1e+30"_qs},
                {"{TIFF}", "Orientation", 6, "orientation", 6},
                {"{TIFF}", "Orientation", 6, "imageSizeToDisplay", u"0 x 0"_qs},
                {"{Exif}", "FocalLength", 4.2, "folcalLength", u"4.2 mm"_qs},
                {"{Exif}", "ExposureBiasValue", -0.333, "exposureBias", u"-0.33 EV"_qs},
                {"{Exif}", "ISOSpeedRatings", QVariantList{100, 200}, "isoSpeedRating", u"100,200"_qs},
                {"{Exif}", "Flash", 16, "flashFired", 1},
                {"{GPS}", "Latitude", -2.5, "gpsLatitude", -2.5},
                {"{GPS}", "Longitude", -2.5, "gpsLongitude", -2.5},
                {"{TIFF}", "Make", u"Acme"_qs, "cameraMaker", u"Acme"_qs},
                {"{TIFF}", "Model", u"One"_qs, "cameraModel", u"One"_qs},
                {"{IPTC}", "Keywords", QVariantList{u"a b"_qs, 7}, "keywords", u"a b,7"_qs}};
    for (const auto &[group, key, object, field, expected] : rows) {
        const QVariantMap map{{QLatin1String(key), object}};
        ExifInfo info(*group ? QVariantMap{{QLatin1String(group), map}} : map);
        const auto isField = [name = QLatin1String(field)](const auto &entry) { return entry.first == name; };
        for (int round = 0; round < 2; ++round) {
            const RecordFields fields = info.fields();
            EXPECT_EQ(std::find_if(fields.begin(), fields.end(), isField)->second, expected) << field;
            // What another dictionary lacks keeps its value.
            info.resetAllWithDict(QVariantMap{{u"{TIFF}"_qs, 5}});
            info.resetAllWithDict(std::nullopt);
        }
    }
}

} // namespace hazelmark
