#pragma once

#include "EmbeddedBlocks.h"
#include "LeftOut.h"
#include "XmpPacket.h"

#include <exiv2/exiv2.hpp>

namespace hazelmark {

/// A photo's metadata, parsed.
struct PhotoMetadata
{
    Exiv2::ExifData exif;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian; ///< of the EXIF values
    /// The bytes: `exif` without what is not carried.
    EmbeddedBlocks blocks;
    std::optional<XmpPacket> xmp; ///< nothing where there is no packet, or none that can be read
    LeftOut leftOut;              ///< of the EXIF block, and whole blocks that make no sense
};

/// Reads the metadata of the file: from its blocks where its decoder has found them (see Decoder::blocks()) or where
/// they are known here (see readEmbeddedBlocks()), else what Exiv2 finds in the decoder program. What cannot be parsed
/// is left out with a warning, each block for itself. The EXIF tags of a TIFF file are all there, those that say how it
/// stores its pixels too.
PhotoMetadata readPhotoMetadata(const SourceFile &source, const PictureInfo &info,
                                const std::optional<EmbeddedBlocks> &blocks);

/// Lets go of the tags that say how a TIFF file stores its pixels: they are shown and not carried.
void keepPhotoTags(PhotoMetadata &metadata);

/// For carrying: the metadata with the maker's note, which was passed over if it lies far behind the beginning of a
/// TIFF file. Once.
void readDistantNote(const SourceFile &source, QSize size, PhotoMetadata &metadata);

} // namespace hazelmark
