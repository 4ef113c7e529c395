#include "ExifInfo.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace hazelmark {

TEST(ExifInfo, FieldsAreShownAsTheSummaryHasThemAndKeptWhereAnotherDictionaryLacksThem)
{
    QJsonObject dictionary = QJsonDocument::fromJson(R"({
        "PixelWidth": "4000 pixels", "PixelHeight": 1e30, "DPIWidth": 300.04, "DPIHeight": 72,
        "{TIFF}": {"Orientation": 3, "Make": "Acme", "Model": "One"}, "{IPTC}": {"Keywords": ["a b", 7]},
        "{Exif}": {"FocalLength": 4.2, "ExposureBiasValue": -0.333, "ISOSpeedRatings": [100, 200], "Flash": 16},
        "{GPS}": {"Latitude": -2.5, "Longitude": 3.5}})")
                                 .object();
    const std::string expected =
        "keywords=a b,7; imageSize=4000 pixels x 1e+30; imageDPI=300.0 x 72.0; orientation=3; folcalLength=4.2 mm; "
        "exposureBias=-0.33 EV; "
        "isoSpeedRating=100,200; exposureMode=-0.333; cameraMaker=Acme; cameraModel=One; flashFired=1; "
        "gpsLatitude=-2.5; gpsLongitude=3.5; pixelWidth=4000; pixelHeight=2147483647; imageSizeToDisplay=";
    for (const int orientation : {0, 1, 4, 5, 6, 7, 8, 9}) {
        dictionary[u"Orientation"_qs] = orientation;
        ExifInfo info(dictionary.toVariantMap());
        EXPECT_EQ(std::pair(info.dpiWidth(), info.dpiHeight()), std::pair(72.0, 300.04)) << "crossed";
        info.resetAllWithDict(QVariantMap{{u"{TIFF}"_qs, 5}});
        info.resetAllWithDict(std::nullopt);
        QStringList shown;
        for (const auto &[name, value] : info.fields()) {
            if (!value.toString().isEmpty() && value != 0)
                shown += name + u'=' + value.toString();
        }
        const bool isTurned = orientation >= 5 && orientation <= 8;
        EXPECT_EQ(shown.join(u"; "_qs).toStdString(),
                  expected + (isTurned ? "2147483647 x 4000" : "4000 x 2147483647"));
    }
}

} // namespace hazelmark
