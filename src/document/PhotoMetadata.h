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
    /// The bytes: `exif` without what is not carried, and empty where the tags could not be had as a block.
    EmbeddedBlocks blocks;
    std::optional<XmpPacket> xmp; ///< nothing where there is no packet, or none that can be read
    LeftOut leftOut;              ///< of the EXIF block, and whole blocks that make no sense
};

/// Reads the metadata of the file: from its blocks where its decoder has found them (see Decoder::blocks()) or where
/// they are known here (see readEmbeddedBlocks()), else as far as Exiv2 reads the file. What cannot be parsed is left
/// out with a warning, each block for itself.
PhotoMetadata readPhotoMetadata(const SourceFile &source, const PictureInfo &info,
                                const std::optional<EmbeddedBlocks> &blocks);

/// The metadata of a TIFF file, as blocks where it can be had so, without the tags that say how the file stores its
/// pixels.
PhotoMetadata readTiffMetadataToCarry(const SourceFile &source, QSize size);

} // namespace hazelmark
