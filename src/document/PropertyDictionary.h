#pragma once

#include "Picture.h"

#include <QLatin1String>
#include <QString>
#include <QVariantMap>

namespace hazelmark {

struct PhotoMetadata;

inline constexpr QLatin1String kExifGroup("{Exif}");
inline constexpr QLatin1String kTiffGroup("{TIFF}");
inline constexpr QLatin1String kGpsGroup("{GPS}");
inline constexpr QLatin1String kIptcGroup("{IPTC}");
inline constexpr QLatin1String kExifAuxGroup("{ExifAux}");
inline constexpr QLatin1String kPngGroup("{PNG}"); ///< texts, by the keywords that are registered for PNG files

/// What Photo::dictionary() gives, of the photo at `path` of which this is known. Metadata that makes no sense is left
/// out with a warning.
QVariantMap propertyDictionary(const QString &path, const PictureInfo &info, const PhotoMetadata &metadata);

} // namespace hazelmark
