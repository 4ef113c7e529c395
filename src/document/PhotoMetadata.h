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
};

/// Parses the blocks of the file at `path`. What cannot be parsed is left out with a warning, each block for itself.
PhotoMetadata parseBlocks(const QString &path, const EmbeddedBlocks &blocks);

/// Parses the metadata of a file whose blocks are not known here: TIFF and whatever else Exiv2 reads. Empty for a file
/// of which it knows nothing.
PhotoMetadata parseFile(const QString &path);

/// The one or the other, as the format (PictureInfo::format) asks.
PhotoMetadata readPhotoMetadata(const QString &path, const QByteArray &format);

} // namespace hazelmark
