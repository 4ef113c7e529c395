#include "ExifInfo.h"

#include "ObjectText.h"
#include "PhotoFile.h"
#include "PropertyDictionary.h"

namespace hazelmark {

namespace {

/// Calls `take` with the object under `key` if there is one.
template <typename Take>
void ifPresent(const QVariantMap &dict, QLatin1String key, const Take &take)
{
    const auto found = dict.constFind(key);
    if (found != dict.constEnd() && found->isValid())
        take(*found);
}

void copyIfPresent(const QVariantMap &dict, QLatin1String key, QVariant &field)
{
    ifPresent(dict, key, [&field](const QVariant &object) { field = object; });
}

void copyIfPresent(const QVariantMap &dict, QLatin1String key, qint32 &field)
{
    ifPresent(dict, key, [&field](const QVariant &object) { field = integerValue(object); });
}

void copyIfPresent(const QVariantMap &dict, QLatin1String key, double &field)
{
    ifPresent(dict, key, [&field](const QVariant &object) { field = doubleValue(object); });
}

/// A side's length goes through single precision on its way into the size to display.
int displayLength(const QVariant &object)
{
    return integerValue(double(float(doubleValue(object))));
}

} // namespace

ExifInfo::ExifInfo(const QString &path)
{
    resetAllWithDict(exifForFile(path));
}

ExifInfo::ExifInfo(const std::optional<QVariantMap> &dict)
{
    resetAllWithDict(dict);
}

std::optional<QVariantMap> ExifInfo::exifForFile(const QString &path)
{
    return PhotoFile::exifDict(path);
}

RecordFields ExifInfo::fields() const
{
    return {HAZELMARK_EXIF_INFO_FIELDS(HAZELMARK_RECORD_FIELD_ENTRY)};
}

void ExifInfo::resetAllWithDict(const std::optional<QVariantMap> &dict)
{
    if (!dict)
        return;
    copyIfPresent(*dict, QLatin1String("ProfileName"), m_profileName);
    copyIfPresent(*dict, QLatin1String("ColorModel"), m_colorModel);
    takeSizes(*dict);
    takeResolution(*dict);
    ifPresent(*dict, kExifGroup, [this](const QVariant &group) { takeExposure(group.toMap()); });
    ifPresent(*dict, kTiffGroup, [this](const QVariant &group) { takeCamera(group.toMap()); });
    ifPresent(*dict, kGpsGroup, [this](const QVariant &group) { takePosition(group.toMap()); });
    ifPresent(*dict, kIptcGroup, [this](const QVariant &group) {
        ifPresent(group.toMap(), QLatin1String("Keywords"),
                  [this](const QVariant &array) { m_keywords = joinedObjectText(array); });
    });
    ifPresent(*dict, kExifAuxGroup, [this](const QVariant &group) {
        copyIfPresent(group.toMap(), QLatin1String("LensModel"), m_cameraLensModel);
    });
}

void ExifInfo::takeSizes(const QVariantMap &dict)
{
    const QVariant width = dict.value(QStringLiteral("PixelWidth"));
    const QVariant height = dict.value(QStringLiteral("PixelHeight"));
    // A record that has no texts yet gets them even from a dictionary without sizes.
    if (!width.isValid() && !height.isValid() && !m_imageSize.isNull())
        return;
    copyIfPresent(dict, QLatin1String("PixelWidth"), m_pixelWidth);
    copyIfPresent(dict, QLatin1String("PixelHeight"), m_pixelHeight);
    m_imageSize = objectText(width) + QStringLiteral(" x ") + objectText(height);

    // The size to display follows the top-level tag, the `orientation` field the one of "{TIFF}".
    const int orientation = integerValue(dict.value(QStringLiteral("Orientation")));
    int displayWidth = displayLength(width);
    int displayHeight = displayLength(height);
    if (orientation >= 5 && orientation <= 8)
        std::swap(displayWidth, displayHeight);
    m_imageSizeToDisplay = QString::asprintf("%d x %d", displayWidth, displayHeight);
}

void ExifInfo::takeResolution(const QVariantMap &dict)
{
    m_dpiHeight = 0.0;
    m_dpiWidth = 0.0;
    const QVariant width = dict.value(QStringLiteral("DPIWidth"));
    const QVariant height = dict.value(QStringLiteral("DPIHeight"));
    if (!width.isValid() || !height.isValid())
        return;
    // Crossed on purpose; only the text has them in their order.
    m_dpiHeight = doubleValue(width);
    m_dpiWidth = doubleValue(height);
    m_imageDPI = QString::asprintf("%.1f x %.1f", doubleValue(width), doubleValue(height));
}

void ExifInfo::takeExposure(const QVariantMap &exif)
{
    copyIfPresent(exif, QLatin1String("Rating"), m_rating);
    ifPresent(exif, QLatin1String("FocalLength"),
              [this](const QVariant &length) { m_folcalLength = objectText(length) + QStringLiteral(" mm"); });
    ifPresent(exif, QLatin1String("ExposureBiasValue"), [this](const QVariant &bias) {
        m_exposureBias = QString::asprintf("%.2f EV", doubleValue(bias));
        m_exposureMode = bias; // the bias once more, not the mode: kept
    });
    ifPresent(exif, QLatin1String("ISOSpeedRatings"),
              [this](const QVariant &array) { m_isoSpeedRating = joinedObjectText(array); });
    copyIfPresent(exif, QLatin1String("ExposureProgram"), m_exposureProgram);
    copyIfPresent(exif, QLatin1String("MeteringMode"), m_meteringMode);
    copyIfPresent(exif, QLatin1String("LightSource"), m_lightSource);
    copyIfPresent(exif, QLatin1String("SensingMethod"), m_sensingMethod);
    copyIfPresent(exif, QLatin1String("SceneCaptureType"), m_sceneCaptureType);
    copyIfPresent(exif, QLatin1String("DigitalZoomRatio"), m_digitalZoomRatio);
    copyIfPresent(exif, QLatin1String("ColorSpace"), m_colorSpace);
    // Any code but 0 counts, also those that say that the flash did not fire.
    ifPresent(exif, QLatin1String("Flash"), [this](const QVariant &code) { m_flashFired = doubleValue(code) != 0.0; });
    copyIfPresent(exif, QLatin1String("UserComment"), m_userComment);
}

void ExifInfo::takeCamera(const QVariantMap &tiff)
{
    copyIfPresent(tiff, QLatin1String("Make"), m_cameraMaker);
    copyIfPresent(tiff, QLatin1String("Model"), m_cameraModel);
    copyIfPresent(tiff, QLatin1String("Orientation"), m_orientation);
    copyIfPresent(tiff, QLatin1String("Software"), m_editingSoftware);
}

void ExifInfo::takePosition(const QVariantMap &gps)
{
    copyIfPresent(gps, QLatin1String("Latitude"), m_gpsLatitude);
    copyIfPresent(gps, QLatin1String("Longitude"), m_gpsLongitude);
    copyIfPresent(gps, QLatin1String("LatitudeRef"), m_gpsLatitudeRef);
    copyIfPresent(gps, QLatin1String("LongitudeRef"), m_gpsLongitudeRef);
    copyIfPresent(gps, QLatin1String("Altitude"), m_gpsAltitude);
}

} // namespace hazelmark
