#pragma once

#include "RecordFields.h"

// A QVariant holds its value as found in the dictionary, a QString is formatted here.
// clang-format off
#define HAZELMARK_EXIF_INFO_FIELDS(FIELD)                                                                              \
    FIELD(QString, fileName, setFileName)     /* reserved, like the next three: never filled */                        \
    FIELD(QString, fileType, setFileType)                                                                              \
    FIELD(QString, fileLabel, setFileLabel)                                                                            \
    FIELD(QString, folderName, setFolderName)                                                                          \
    FIELD(QVariant, rating, setRating)                                                                                 \
    FIELD(QString, keywords, setKeywords)     /* joined with "," */                                                    \
    FIELD(QString, imageSize, setImageSize)   /* as stored, "4000 x 3000" */                                           \
    FIELD(QString, imageDPI, setImageDPI)     /* "300.0 x 72.0" */                                                     \
    FIELD(qint32, orientation, setOrientation) /* of "{TIFF}"; 0 where the file has none */                            \
    FIELD(QVariant, editingSoftware, setEditingSoftware)                                                               \
    FIELD(QVariant, exposure, setExposure)    /* reserved: never filled */                                             \
    FIELD(QVariant, folcalLength, setFolcalLength) /* "50 mm" */                                                       \
    FIELD(QVariant, exposureBias, setExposureBias) /* "-0.33 EV" */                                                    \
    FIELD(QString, isoSpeedRating, setIsoSpeedRating) /* joined with "," */                                            \
    FIELD(QVariant, exposureMode, setExposureMode) /* the raw exposure bias, on purpose */                             \
    FIELD(QVariant, exposureProgram, setExposureProgram)                                                               \
    FIELD(QVariant, meteringMode, setMeteringMode)                                                                     \
    FIELD(QVariant, lightSource, setLightSource)                                                                       \
    FIELD(QVariant, sensingMethod, setSensingMethod)                                                                   \
    FIELD(QVariant, sceneCaptureType, setSceneCaptureType)                                                             \
    FIELD(QVariant, cameraMaker, setCameraMaker)                                                                       \
    FIELD(QVariant, cameraModel, setCameraModel)                                                                       \
    FIELD(QVariant, cameraLensModel, setCameraLensModel)                                                               \
    FIELD(QVariant, cameraFirmware, setCameraFirmware) /* reserved: never filled */                                    \
    FIELD(QVariant, colorModel, setColorModel)                                                                         \
    FIELD(QVariant, colorSpace, setColorSpace)                                                                         \
    FIELD(QVariant, profileName, setProfileName)                                                                       \
    FIELD(QVariant, fileCreated, setFileCreated) /* reserved, like the next three: never filled */                     \
    FIELD(QVariant, fileModified, setFileModified)                                                                     \
    FIELD(QVariant, captureDate, setCaptureDate)                                                                       \
    FIELD(quint64, fileSize, setFileSize)                                                                              \
    FIELD(QVariant, digitalZoomRatio, setDigitalZoomRatio)                                                             \
    FIELD(qint32, flashFired, setFlashFired)  /* 1 for any flash code but 0 */                                         \
    FIELD(double, gpsAltitude, setGpsAltitude) /* metres */                                                            \
    FIELD(double, gpsLatitude, setGpsLatitude) /* degrees without a sign, see gpsLatitudeRef */                        \
    FIELD(double, gpsLongitude, setGpsLongitude)                                                                       \
    FIELD(qint32, pixelWidth, setPixelWidth)  /* as stored */                                                          \
    FIELD(qint32, pixelHeight, setPixelHeight)                                                                         \
    FIELD(double, dpiWidth, setDpiWidth)      /* the vertical resolution: the two are crossed on purpose */            \
    FIELD(double, dpiHeight, setDpiHeight)    /* the horizontal resolution */                                          \
    FIELD(QVariant, gpsLatitudeRef, setGpsLatitudeRef)                                                                 \
    FIELD(QVariant, gpsLongitudeRef, setGpsLongitudeRef)                                                               \
    FIELD(float, imgWidth, setImgWidth)       /* reserved, like the next: never filled */                              \
    FIELD(float, imgHeight, setImgHeight)                                                                              \
    FIELD(QVariant, userComment, setUserComment)                                                                       \
    FIELD(QString, imageSizeToDisplay, setImageSizeToDisplay) /* upright, "3000 x 4000" */
// clang-format on

namespace hazelmark {

/// What a photo's image-property dictionary says, as a flat record of values ready to be shown. Codes (exposure
/// program, metering mode and the like) stay the numbers that they are.
class ExifInfo
{
public:
    /// An empty record: every object absent, every number 0.
    ExifInfo() = default;
    /// From the file's dictionary; empty when the file has none.
    explicit ExifInfo(const QString &path);
    explicit ExifInfo(const std::optional<QVariantMap> &dict);

    /// The same dictionary as PhotoFile::exifDict() gives.
    static std::optional<QVariantMap> exifForFile(const QString &path);

    /// Takes over what `dict` has. What it lacks keeps its value, but for the two resolutions: they start from 0 each
    /// time.
    void resetAllWithDict(const std::optional<QVariantMap> &dict);

    RecordFields fields() const;

    HAZELMARK_EXIF_INFO_FIELDS(HAZELMARK_RECORD_FIELD)

private:
    void takeSizes(const QVariantMap &dict);
    void takeResolution(const QVariantMap &dict);
    void takeExposure(const QVariantMap &exif);
    void takeCamera(const QVariantMap &tiff);
    void takePosition(const QVariantMap &gps);
};

} // namespace hazelmark
