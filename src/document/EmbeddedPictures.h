#pragma once

#include "TiffBlock.h"

namespace hazelmark {

struct BlockRange
{
    qsizetype from;
    qsizetype to; ///< behind the last byte
};

/// Offsets of the directories in an EXIF block that hold metadata: the first, and those for EXIF, GPS and
/// interoperability tags.
std::vector<quint32> metadataDirectories(const TiffBlock &block);

/// Offset of the directory of EXIF tags; 0 when there is none.
quint32 exifDirectory(const TiffBlock &block);

/// The block's header, these directories and the values that their tags refer to, in ascending order.
std::vector<BlockRange> usedRanges(const TiffBlock &block);

/// Zeroes every JPEG stream in an EXIF block, wherever it lies: previews in maker's notes that nobody here understands,
/// or thumbnails that an editor has only cut off. Nothing else in the block changes or moves. False when the block has
/// been made so that the search would take for ever: it is not to be trusted then.
[[nodiscard]] bool wipeEmbeddedPictures(TiffBlock &block);

/// Takes the directories behind the first one (the thumbnail's) off the block and zeroes their pictures.
void removeThumbnail(TiffBlock &block);

/// Zeroes what none of the block's directories refers to. Not for blocks with a maker's note, which may refer to more.
void wipeUnreferenced(TiffBlock &block);

} // namespace hazelmark
