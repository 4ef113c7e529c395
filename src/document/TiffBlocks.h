#pragma once

#include "EmbeddedBlocks.h"

namespace hazelmark {

/// The metadata of the TIFF file at `path` in the form of blocks. The EXIF block holds the first directory's tags but
/// for those that say how the pixels are stored, and whatever it refers to at the places that it has in the file:
/// makers' notes may depend on that. All else in it is zero. It stays empty where that cannot be had: when the
/// metadata lies far behind the beginning of the file. Of a file with 64-bit offsets it is made anew, see
/// readBigTiffBlocks().
EmbeddedBlocks readTiffBlocks(const QString &path);

/// The same for looking at: the EXIF block has all the first directory's tags but those that lead to data, and also
/// what lies far behind the beginning of the file, then without the maker's note and without values of more than 64 KB.
EmbeddedBlocks readTiffBlocksToShow(const QString &path);

} // namespace hazelmark
