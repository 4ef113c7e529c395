#pragma once

#include "EmbeddedBlocks.h"

namespace hazelmark {

/// The metadata of a TIFF file in the form of blocks. The EXIF block holds the first directory's tags but for those
/// that say how the pixels are stored, and whatever it refers to at the places that it has in the file: makers' notes
/// may depend on that. All else in it is zero. Where that cannot be had, when the metadata lies far behind the
/// beginning of the file or the file has 64-bit offsets, the tags and their values are laid next to each other, the
/// former without the maker's note.
EmbeddedBlocks readTiffBlocks(const SourceFile &source);

/// The first directory's tags that say how the pixels are stored, likewise as a block.
QByteArray readTiffStorage(const SourceFile &source);

} // namespace hazelmark
