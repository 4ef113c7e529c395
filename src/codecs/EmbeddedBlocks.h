#pragma once

#include "SourceFile.h"

#include <QByteArray>

namespace hazelmark {

/// The metadata of a file as the bytes that it embeds; empty where it has none.
struct EmbeddedBlocks
{
    QByteArray exif;        ///< TIFF-structured, without the "Exif\0\0" lead-in
    QByteArray iptc;        ///< IIM records
    QByteArray xmp;         ///< the packet
    QByteArray extendedXmp; ///< JPEG only: the part of the packet that did not fit into one segment
    std::vector<PngText> texts;
    bool lacksNote = false; ///< TIFF only: a maker's note lies where no block can have it (but see readForeignBlocks())
};

/// Every IIM record begins with it.
inline constexpr char kIptcRecordMarker = 0x1c;

/// Blocks larger than this are passed over.
inline constexpr qint64 kMaxBlockSize = 64 * 1024 * 1024;

/// What the file embeds. Damage ends the search; what was found before it counts. Nothing for a `format` whose blocks
/// are not found here; they are of "jpeg", "png", "webp" and "gif", as PictureInfo::format names them.
std::optional<EmbeddedBlocks> readEmbeddedBlocks(const SourceFile &source, const QByteArray &format);

} // namespace hazelmark
