#pragma once

#include "Encoder.h"

#include <QSize>
#include <QString>

namespace hazelmark {

/// What a file written in `format` with `size` pixels (as stored) carries of the photo at `sourcePath`: all its EXIF,
/// GPS, IPTC and XMP metadata, makers' notes included, its colour profile byte for byte, and its resolution.
///
/// Not carried, because it would still show what was blurred: every embedded picture (thumbnails, previews in makers'
/// notes, the original in an editor's data, depth and gain maps). What describes how the source's own data is stored is
/// the encoder's. Corrected is only what states another size than `size`. Metadata that cannot be parsed is left out
/// with a warning. For a format without a place for metadata only the profile and the resolution come back.
MetadataBlocks carriedMetadata(const QString &sourcePath, QSize size, WriteFormat format);

} // namespace hazelmark
