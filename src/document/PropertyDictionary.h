#pragma once

#include <QLatin1String>
#include <QSize>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace hazelmark {

inline constexpr QLatin1String kExifGroup("{Exif}");
inline constexpr QLatin1String kTiffGroup("{TIFF}");
inline constexpr QLatin1String kGpsGroup("{GPS}");
inline constexpr QLatin1String kIptcGroup("{IPTC}");
inline constexpr QLatin1String kExifAuxGroup("{ExifAux}");
inline constexpr QLatin1String kPngGroup("{PNG}"); ///< texts, by the keywords that are registered for PNG files

/// The image-property dictionary of the first picture in the file at `path`; absent when the file is no picture that
/// can be read. Metadata that makes no sense is left out with a warning.
///
/// Top level, each where the file has it: "PixelWidth" and "PixelHeight" (always there; pixels as stored, before any
/// turn), "Depth" (bits per channel), "ColorModel" ("RGB", "Gray", "CMYK", "Lab"), "DPIWidth", "DPIHeight",
/// "Orientation" (1..8 as the EXIF tag has them), "ProfileName", "HasAlpha" (true). Below it the groups named above,
/// with the EXIF standard's tag names: those of "{GPS}" without their leading "GPS", "Latitude" and "Longitude" in
/// decimal degrees without a sign.
///
/// Whole numbers are qlonglong, rationals double, texts QString, several values a QVariantList.
std::optional<QVariantMap> readPropertyDictionary(const QString &path);

struct PictureProperties
{
    QVariantMap dictionary;
    std::vector<QSize> uprightSizes; ///< pixels of each of the file's pictures, turned as the orientation tag says
};

/// The same with the sizes of all the pictures in the file, from one reading.
std::optional<PictureProperties> readPictureProperties(const QString &path);

} // namespace hazelmark
