#pragma once

#include "PhotoMetadata.h"

#include <QSize>

namespace hazelmark {

/// The EXIF block that a written file of `size` pixels carries of its source's: what is harmless (see keepHarmless())
/// but for what says how the source's own data was stored. Only tags that state another size in pixels are corrected.
/// `forJpeg`: a block that does not fit into the one segment that a JPEG file has for it loses its largest values.
///
/// A block is changed in place: a maker's note may refer to places in it by their offsets, in ways that only its maker
/// knows, so nothing moves. Only where tags have to go from the middle of it, or where there is no block, a new one is
/// written, with the notes of the makers that Exiv2 knows laid out anew.
QByteArray carriedExif(const PhotoMetadata &metadata, QSize size, bool forJpeg, LeftOut &leftOut);

} // namespace hazelmark
