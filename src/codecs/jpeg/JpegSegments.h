#pragma once

#include "Picture.h"

#include <QByteArray>

#include <vector>

namespace hazelmark {

// What application segments of JPEG files begin with, closing zero bytes included.
inline const QByteArray kExifLeadIn("Exif\0", 6);
inline const QByteArray kXmpLeadIn("http://ns.adobe.com/xap/1.0/", 29);
inline const QByteArray kExtendedXmpLeadIn("http://ns.adobe.com/xmp/extension/", 35);
inline const QByteArray kResourceLeadIn("Photoshop 3.0", 14);

/// An application segment of a JPEG file: its marker number (0xe1 for APP1) and what follows its length field.
struct JpegSegment
{
    int marker;
    QByteArray data;
};

/// The segments that carry `metadata`, in the order in which they belong in the file: EXIF, XMP (with the extended
/// form when the packet is too large for one segment), IPTC in image-resource blocks, the colour profile. An EXIF
/// block that does not fit into the one segment that it may have is left out with a warning.
std::vector<JpegSegment> metadataSegments(const MetadataBlocks &metadata);

/// IIM records as an image-resource block ("8BIM", number 0x0404), the form in which JPEG and PNG files embed them.
QByteArray iptcResourceBlock(const QByteArray &iptc);
/// The first IIM records in a run of image-resource blocks. Some writers store the records without such blocks.
QByteArray iptcOfResources(const QByteArray &resources);

/// The block behind the lead-in that some writers give it in every format.
QByteArray withoutExifLeadIn(const QByteArray &bytes);

} // namespace hazelmark
