#pragma once

#include "ForeignDecoder.h"

namespace hazelmark::glass {

/// Before the process gives up its rights.
void readyMetadata();

/// Whether a tag of the file's first directory is kept, which also says how the file stores its pixels.
using IsOfThePhoto = bool (*)(uint16_t tag);

/// Puts what Exiv2 finds in the file into the header: EXIF with the maker's note, XMP, IPTC. Previews are left out. A
/// file whose metadata make no sense has none.
void takeMetadata(const Photo &photo, IsOfThePhoto isOfThePhoto, Header &header);

} // namespace hazelmark::glass
