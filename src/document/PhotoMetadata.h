#pragma once

#include "EmbeddedBlocks.h"

#include <exiv2/exiv2.hpp>

namespace hazelmark {

/// A photo's metadata as Exiv2 has parsed it.
struct PhotoMetadata
{
    Exiv2::ExifData exif;
    Exiv2::IptcData iptc;
    Exiv2::XmpData xmp;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian; ///< of the EXIF values
    EmbeddedBlocks blocks; ///< the bytes; without `exif` where the EXIF tags could not be had as a block
};

/// Reads the metadata of the file at `path`, of the format that PictureInfo names: from its blocks where they are known
/// here (see hasEmbeddedBlocks()), else as far as Exiv2 reads the file. What cannot be parsed is left out with a
/// warning, each block for itself.
PhotoMetadata readPhotoMetadata(const QString &path, const QByteArray &format);

/// The same with a TIFF file's metadata as blocks where it can be had so: without the tags that say how the file stores
/// its pixels.
PhotoMetadata readMetadataToCarry(const QString &path, const QByteArray &format);

} // namespace hazelmark
