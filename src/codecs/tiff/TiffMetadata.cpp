#include "TiffMetadata.h"

#include "Log.h"
#include "TiffBytes.h"
#include "TiffTags.h"

#include <limits>

#include <unistd.h>

namespace hazelmark {

namespace {

constexpr qsizetype kMostEntries = 0xffff;

/// Those of the directory that the file's header leads to; none when it cannot be read.
TiffEntries writtenEntries(FileSink &sink)
{
    const auto read = [&](qint64 offset, qint64 count) { return sink.readAt(offset, size_t(count)); };
    const auto cursor = TiffCursor::of(read, std::numeric_limits<qint64>::max());
    const auto directory = cursor ? cursor->directoryAt(cursor->firstDirectoryOffset()) : std::nullopt;
    TiffEntries entries;
    for (const TiffEntry &entry : directory ? directory->entries : std::vector<TiffEntry>())
        entries[entry.tag] = read(entry.position, TiffBlock::kEntrySize);
    return entries;
}

/// Lets the header lead to a new directory at the end of the file.
bool writeDirectory(FileSink &sink, const TiffEntries &entries, bool isBigEndian)
{
    int64_t offset = sink.seek(0, SEEK_END);
    if (offset < 0)
        return false;
    QByteArray directory(offset % 2, '\0'); // directories begin at even places
    offset += directory.size();
    directory += tiffDirectory(entries, isBigEndian);
    const QByteArray place = tiffBytes(uint32_t(offset), isBigEndian);
    return sink.write(directory.constData(), size_t(directory.size())) && sink.seek(4, SEEK_SET) == 4 &&
           sink.write(place.constData(), size_t(place.size()));
}

/// Whether other programs take the entry in a file of this format. Of orientations and units that do not exist they
/// refuse the whole file.
bool isAcceptable(const TiffBlock &block, const TiffBlock::Entry &entry)
{
    const auto isBetween = [&](quint32 first, quint32 last) {
        const quint32 number = block.number(entry).value_or(0);
        return number >= first && number <= last;
    };
    switch (entry.tag) {
    case TIFFTAG_ORIENTATION:
        return isBetween(ORIENTATION_TOPLEFT, ORIENTATION_LEFTBOT);
    case TIFFTAG_RESOLUTIONUNIT:
        return isBetween(RESUNIT_NONE, RESUNIT_CENTIMETER);
    default:
        return entry.valueSize > 0 && !isTiffStorageTag(entry.tag) && !isTiffDataTag(entry.tag);
    }
}

} // namespace

TiffMetadata::TiffMetadata(const MetadataBlocks &blocks, bool isBig)
    : m_exif(TiffBlock::of(evenlyLong(blocks.exif)))
    , m_iptc(blocks.iptc)
    , m_xmp(blocks.xmp)
    , m_isBig(isBig)
{
    if (isBig && (m_exif || !m_iptc.isEmpty()))
        qCWarning(lcCodecs) << "A TIFF file of more than 4 GB takes only the orientation and the XMP packet over";
}

TiffHandle::ByteOrder TiffMetadata::byteOrder() const
{
    const bool isBigEndian = !m_isBig && m_exif && m_exif->isBigEndian();
    return isBigEndian ? TiffHandle::ByteOrder::BigEndian : TiffHandle::ByteOrder::LittleEndian;
}

bool TiffMetadata::lay(FileSink &sink) const
{
    if (m_isBig)
        return true;
    const QByteArray block = (m_exif ? m_exif->bytes().mid(TiffBlock::kHeaderSize) : QByteArray()) + evenlyLong(m_iptc);
    return block.isEmpty() ||
           (sink.seek(0, SEEK_END) == TiffBlock::kHeaderSize && sink.write(block.constData(), size_t(block.size())));
}

bool TiffMetadata::setTags(TIFF *tiff) const
{
    bool ok = true;
    if (!m_xmp.isEmpty())
        ok = TIFFSetField(tiff, TIFFTAG_XMLPACKET, uint32_t(m_xmp.size()), m_xmp.constData()) == 1;
    if (m_isBig && m_exif) {
        const auto directory = m_exif->directoryAt(m_exif->firstDirectoryOffset());
        const TiffBlock::Entry *entry = directory ? directory->find(TIFFTAG_ORIENTATION) : nullptr;
        if (entry && isAcceptable(*m_exif, *entry))
            ok = ok && TIFFSetField(tiff, TIFFTAG_ORIENTATION, uint16_t(*m_exif->number(*entry))) == 1;
    }
    return ok;
}

bool TiffMetadata::join(FileSink &sink) const
{
    if (m_isBig || (!m_exif && m_iptc.isEmpty()))
        return !sink.hasFailed();
    const bool isBigEndian = byteOrder() == TiffHandle::ByteOrder::BigEndian;
    TiffEntries entries = writtenEntries(sink);
    if (entries.empty())
        return false;
    const auto directory = m_exif ? m_exif->directoryAt(m_exif->firstDirectoryOffset()) : std::nullopt;
    if (directory) {
        for (const TiffBlock::Entry &entry : directory->entries) {
            if (isAcceptable(*m_exif, entry))
                entries[entry.tag] = m_exif->bytes().mid(entry.position, TiffBlock::kEntrySize);
        }
    }
    // Four bytes and less would stand in the entry itself; records are longer.
    if (m_iptc.size() > 4) {
        const auto offset = uint32_t(m_exif ? m_exif->bytes().size() : TiffBlock::kHeaderSize);
        entries[tifftag::kIptc] = tiffBytes(tifftag::kIptc, isBigEndian) +
                                  tiffBytes(uint16_t(TIFF_UNDEFINED), isBigEndian) +
                                  tiffBytes(uint32_t(m_iptc.size()), isBigEndian) + tiffBytes(offset, isBigEndian);
    }
    return qsizetype(entries.size()) <= kMostEntries && writeDirectory(sink, entries, isBigEndian);
}

} // namespace hazelmark
