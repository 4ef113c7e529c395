#pragma once

#include "Picture.h"
#include "TiffBlock.h"
#include "TiffHandle.h"

#include <optional>

namespace hazelmark {

/// How metadata gets into a TIFF file. Its EXIF tags are tags of the file's own directory, with offsets from the file's
/// start. So the EXIF block is laid at the start of the file, behind the header, where every offset in it stays true,
/// also those in makers' notes that nobody here understands; when the file is written, the tags of the block's first
/// directory join those of the file's.
///
/// The form with 64-bit offsets has directories of another layout: it gets the orientation and the XMP packet alone.
class TiffMetadata
{
public:
    TiffMetadata(const MetadataBlocks &blocks, bool isBig);

    /// The byte order that the file must have.
    TiffHandle::ByteOrder byteOrder() const;

    /// To be called when the file has its header and nothing else.
    bool lay(FileSink &sink) const;
    /// The tags that the library writes.
    bool setTags(TIFF *tiff) const;
    /// To be called when the library has written the file's only directory and is done with the file.
    bool join(FileSink &sink) const;

private:
    std::optional<TiffBlock> m_exif;
    QByteArray m_iptc;
    QByteArray m_xmp;
    bool m_isBig;
};

} // namespace hazelmark
