#pragma once

#include "Encoder.h"
#include "PhotoMetadata.h"

namespace hazelmark {

/// What Photo::carriedMetadata() gives, of the photo at `path` of which this is known.
MetadataBlocks carriedMetadata(const QString &path, const PictureInfo &info, const PhotoMetadata &metadata, QSize size,
                               WriteFormat format);

} // namespace hazelmark
