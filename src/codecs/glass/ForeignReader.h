#pragma once

#include "ForeignKinds.h"
#include "PictureFormat.h"

namespace hazelmark {

/// A file in the decoder program.
std::unique_ptr<PictureReader> makeForeignReader(SourceFile &source, const ForeignKind &kind);

/// The metadata of a file in whatever form Exiv2 reads, found in the decoder program. The EXIF block has none of the
/// tags that say how the file stores its pixels.
EmbeddedBlocks readForeignBlocks(const SourceFile &source);

} // namespace hazelmark
