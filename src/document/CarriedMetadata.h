#pragma once

#include "Encoder.h"

#include <QSize>
#include <QString>

namespace hazelmark {

/// What a file written in `format` with `size` pixels (as stored) carries of the photo at `sourcePath`: its EXIF, GPS,
/// IPTC and XMP metadata and the texts of a PNG file, as far as they are known to be harmless, makers' notes included,
/// its colour profile, and its resolution.
///
/// Not carried, because it would still show what was blurred: whatever is a picture by its definition (thumbnails,
/// previews, layers, depth and gain maps, manifests) or is found to be one by its content, however encoded; and large
/// values that nobody here knows. What describes how the source's own data is stored is the encoder's. Corrected is
/// only what states another size than `size`. What was left out is said once, by kind and size, in the log. For a
/// format without a place for metadata only the profile and the resolution come back.
MetadataBlocks carriedMetadata(const QString &sourcePath, QSize size, WriteFormat format);

} // namespace hazelmark
