#pragma once

#include <QByteArray>
#include <QSize>

#include <optional>

namespace hazelmark {

/// The XMP packet that a written file carries of its source's: everything but what would still show the picture as it
/// was (thumbnails, depth and gain maps, original pictures, references to films behind the picture) and with sizes in
/// pixels that say another size than `size` corrected. A packet that needs no change comes back byte for byte.
///
/// `extension` is the part that did not fit into the packet's own segment; it is joined to it. Nothing when the packet
/// is not well-formed XML: what cannot be searched is not carried.
std::optional<QByteArray> filteredXmp(const QByteArray &packet, const QByteArray &extension, QSize size);

} // namespace hazelmark
