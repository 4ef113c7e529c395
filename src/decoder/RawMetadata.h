#pragma once

#include "ForeignDecoder.h"

namespace hazelmark::glass {

/// Before the process gives up its rights.
void readyMetadata();

/// Puts what the camera noted of the photo into the header: EXIF with the maker's note, XMP, IPTC. How the file stores
/// its pixels, and its previews, are left out. A file whose metadata make no sense has none.
void takeRawMetadata(const Photo &photo, Header &header);

} // namespace hazelmark::glass
