#pragma once

#include "LeftOut.h"

#include <QByteArray>
#include <QMap>
#include <QSize>
#include <QStringList>

#include <optional>

namespace hazelmark {

/// An XMP packet as it was read.
struct XmpPacket
{
    /// What a written file carries of it: a packet written anew, of the properties alone; empty when it has none.
    QByteArray carried;
    /// The values of the properties that are no structures, by their namespace and name; of a list its items.
    QMap<std::pair<QString, QString>, QStringList> values;
    /// What is not carried: what would still show the picture as it was (thumbnails, depth and gain maps, original
    /// pictures, references to films behind the picture, any property in which a picture is found).
    LeftOut leftOut;
};

/// Reads a packet, and `extension`, the part that did not fit into the packet's own segment, which is joined to it.
/// Sizes in pixels that say another size than `size` are corrected. Nothing when the packet is not well-formed, or made
/// of so many parts that it would take seconds: what cannot be searched is not carried.
std::optional<XmpPacket> readXmp(const QByteArray &packet, const QByteArray &extension, QSize size);

} // namespace hazelmark
