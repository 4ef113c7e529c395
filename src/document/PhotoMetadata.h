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
    EmbeddedBlocks blocks; ///< the bytes; without `exif` for a file that has its EXIF tags among its own
};

/// Reads the metadata of the file at `path`, of the format that PictureInfo names: from its blocks where they are known
/// here (see hasEmbeddedBlocks()), else as far as Exiv2 reads the file. What cannot be parsed is left out with a
/// warning, each block for itself.
PhotoMetadata readPhotoMetadata(const QString &path, const QByteArray &format);

} // namespace hazelmark
