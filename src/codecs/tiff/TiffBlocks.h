#pragma once

#include "EmbeddedBlocks.h"

namespace hazelmark {

/// The metadata of a TIFF file in the form of blocks. The EXIF block holds the first directory's tags but for those
/// that say how the pixels are stored, and whatever it refers to at the places that it has in the file: makers' notes
/// may depend on that. All else in it is zero. It stays empty where that cannot be had: when the metadata lies far
/// behind the beginning of the file. Of a file with 64-bit offsets, which no block can have, the tags and their values
/// are laid next to each other.
EmbeddedBlocks readTiffBlocks(const SourceFile &source);

/// The same for looking at: the EXIF block has all the first directory's tags but those that lead to data. Where it
/// cannot have its places in the file, the tags and their values are laid next to each other as well, without the
/// maker's note.
EmbeddedBlocks readTiffBlocksToShow(const SourceFile &source);

} // namespace hazelmark
