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

/// Zeroes what of the range none of those uses, which are in ascending order.
void wipeUnused(TiffBlock &block, const std::vector<BlockRange> &used, BlockRange range);

/// Zeroes what none of the block's directories refers to. Not for blocks with a maker's note, which may refer to more.
void wipeUnreferenced(TiffBlock &block);

} // namespace hazelmark
