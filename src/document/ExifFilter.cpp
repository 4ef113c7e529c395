#include "ExifFilter.h"

#include "ExifDirectories.h"
#include "PictureSearch.h"
#include "TiffTags.h"

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <array>
#include <set>

namespace hazelmark {

namespace {

constexpr qsizetype kMostUnknown = 4096;

constexpr quint16 kStripOffsets = 0x0111;
constexpr quint16 kStripByteCounts = 0x0117;
constexpr quint16 kTileOffsets = 0x0144;
constexpr quint16 kTileByteCounts = 0x0145;
constexpr quint16 kJpegOffset = 0x0201;
constexpr quint16 kJpegLength = 0x0202;

constexpr std::array kPictureTags = {std::pair(kJpegOffset, kJpegLength), std::pair(kStripOffsets, kStripByteCounts),
                                     std::pair(kTileOffsets, kTileByteCounts)};

enum class Kind { Image, Photo, Gps, Interoperability };

std::set<quint16> tagsOf(const char *group)
{
    std::set<quint16> tags;
    constexpr quint16 kEnd = 0xffff;
    for (const Exiv2::TagInfo *tag = Exiv2::ExifTags::tagList(group); tag && tag->tag_ != kEnd; ++tag)
        tags.insert(tag->tag_);
    return tags;
}

/// Whether the tag is known to belong into such a directory.
bool isKnownTag(Kind kind, quint16 tag)
{
    static const std::array kTags = {tagsOf("Image"), tagsOf("Photo"), tagsOf("GPSInfo"), tagsOf("Iop")};
    return kTags[size_t(kind)].count(tag) > 0; // in the order of the kinds
}

QString nameOf(const TiffBlock::Entry &entry)
{
    return QStringLiteral("EXIF tag 0x%1").arg(entry.tag, 4, 16, QLatin1Char('0'));
}

class Filter
{
public:
    Filter(TiffBlock &block, LeftOut &leftOut)
        : m_block(block)
        , m_source(block)
        , m_leftOut(leftOut)
    {
    }

    void run()
    {
        const quint32 first = m_block.firstDirectoryOffset();
        const auto directory = m_block.directoryAt(first);
        if (!directory)
            return;
        filterDirectory(first, Kind::Image);
        m_used = usedRanges(m_block);
        m_seen.clear();
        wipeDirectories(directory->next, true);
        for (const TiffBlock::Directory &removed : m_removed)
            wipePicturesOf(removed, false);
        for (const TiffBlock::Directory &removed : m_removed) {
            for (const TiffBlock::Entry &entry : removed.entries)
                wipeUnused(m_block, m_used, {entry.valueOffset, entry.valueOffset + entry.valueSize});
        }
        if (m_notes.empty())
            wipeUnreferenced(m_block);
        else
            searchNotes();
        searchAll();
    }

private:
    /// False when nothing of it is carried.
    bool filterDirectory(quint32 offset, Kind kind)
    {
        const auto directory = m_block.directoryAt(offset);
        if (!directory || !m_seen.insert(offset).second)
            return false;
        std::vector<TiffBlock::Entry> kept;
        TiffBlock::Directory removed{directory->offset, 0, {}, 0};
        for (const TiffBlock::Entry &entry : directory->entries)
            (isCarried(entry, kind) ? kept : removed.entries).push_back(entry);
        if (!removed.entries.empty() || directory->next != 0)
            m_block.keepEntries(*directory, kept);
        m_removed.push_back(removed);
        return !kept.empty();
    }

    bool isCarried(const TiffBlock::Entry &entry, Kind kind)
    {
        switch (entry.tag) {
        case tifftag::kExifDirectory:
            return kind == Kind::Image && leadsToCarried(entry, Kind::Photo);
        case tifftag::kGpsDirectory:
            return kind == Kind::Image && leadsToCarried(entry, Kind::Gps);
        case tifftag::kInteroperabilityDirectory:
            return kind == Kind::Photo && leadsToCarried(entry, Kind::Interoperability);
        case tifftag::kMakerNote:
            if (kind == Kind::Photo && entry.valueSize > 0)
                m_notes.push_back({entry.valueOffset, entry.valueOffset + entry.valueSize});
            return kind == Kind::Photo && entry.valueSize > 0;
        default:
            break;
        }
        const bool hasValue = entry.type > 0 && entry.type <= kLastTiffType && entry.valueSize == entry.statedSize;
        const bool isKnown = isKnownTag(kind, entry.tag);
        if (hasValue && !isTiffDataTag(entry.tag) && (isKnown || entry.valueSize <= kMostUnknown))
            return !isPicture(entry);
        const bool isStructure = entry.valueSize <= TiffBlock::kInlineSize; // a mere number
        if (!isStructure)
            m_leftOut.add(nameOf(entry), entry.valueSize);
        return false;
    }

    bool leadsToCarried(const TiffBlock::Entry &pointer, Kind kind)
    {
        const std::optional<quint32> offset = m_block.number(pointer);
        return offset && filterDirectory(*offset, kind);
    }

    bool isPicture(const TiffBlock::Entry &entry)
    {
        if (entry.valueSize <= TiffBlock::kInlineSize)
            return false;
        const bool isOfBytes = kTiffTypeSizes[entry.type] == 1;
        const auto found =
            picturesIn(bytesOf(entry.valueOffset, entry.valueSize), isOfBytes ? SearchIn::Value : SearchIn::Numbers);
        if (!found.empty())
            m_leftOut.add(QStringLiteral("%1 with a %2").arg(nameOf(entry), QLatin1String(found[0].kind)),
                          entry.valueSize);
        return !found.empty();
    }

    QByteArrayView bytesOf(qsizetype offset, qsizetype size) const
    {
        return QByteArrayView(m_block.bytes()).sliced(offset, size);
    }

    /// The directories of pictures that follow each other from `offset`.
    void wipeDirectories(quint32 offset, bool isThumbnail, int depth = 0)
    {
        constexpr int kMostDirectories = 16; // one is usual; chains may be endless
        constexpr int kDeepest = 3;
        for (int i = 0; i < kMostDirectories && depth < kDeepest && m_seen.insert(offset).second; ++i) {
            const auto directory = m_source.directoryAt(offset);
            if (!directory)
                return;
            wipePicturesOf(*directory, isThumbnail, depth);
            // The values of a thumbnail's directory stay: writers share them with the first one.
            wipeUnused(m_block, m_used, {directory->offset, directory->offset + directory->size});
            offset = directory->next;
        }
    }

    void wipePicturesOf(const TiffBlock::Directory &directory, bool isThumbnail, int depth = 0)
    {
        for (const auto &[offsetTag, sizeTag] : kPictureTags) {
            const TiffBlock::Entry *offsets = directory.find(offsetTag);
            const TiffBlock::Entry *sizes = directory.find(sizeTag);
            if (!offsets || !sizes)
                continue;
            const std::vector<quint32> from = m_source.numbers(*offsets);
            const std::vector<quint32> size = m_source.numbers(*sizes);
            qint64 total = 0;
            for (size_t i = 0; i < std::min(from.size(), size.size()); ++i) {
                total += size[i];
                wipeUnused(m_block, m_used, {from[i], qsizetype(from[i]) + size[i]});
            }
            // What nothing refers to behind a thumbnail is a larger preview, or what an earlier one has left there.
            if (isThumbnail && !from.empty())
                wipeUnused(m_block, m_used, {*std::min_element(from.begin(), from.end()), m_block.bytes().size()});
            m_leftOut.add(isThumbnail ? QStringLiteral("thumbnail") : QStringLiteral("picture in the EXIF block"),
                          total);
        }
        constexpr size_t kMostSubdirectories = 16;
        const TiffBlock::Entry *subdirectories = directory.find(tifftag::kSubDirectories);
        std::vector<quint32> offsets = subdirectories ? m_source.numbers(*subdirectories) : std::vector<quint32>();
        offsets.resize(std::min(offsets.size(), kMostSubdirectories));
        for (const quint32 offset : offsets)
            wipeDirectories(offset, false, depth + 1);
    }

    /// The notes, and what nothing else uses, as one: a note's values may lie behind it.
    void searchNotes()
    {
        for (const BlockRange &note : m_notes)
            searchMixture(note);
        qsizetype from = TiffBlock::kHeaderSize;
        for (const BlockRange &used : m_used) {
            const bool isNote = std::any_of(m_notes.begin(), m_notes.end(), [&](const BlockRange &note) {
                return note.from == used.from && note.to == used.to;
            });
            if (isNote)
                continue;
            if (used.from > from)
                searchMixture({from, used.from});
            from = std::max(from, used.to);
        }
        searchMixture({from, m_block.bytes().size()});
    }

    void searchMixture(BlockRange range)
    {
        if (range.to <= range.from)
            return;
        for (const FoundPicture &found : picturesIn(bytesOf(range.from, range.to - range.from), SearchIn::Mixture))
            wipePicture(found, range.from, range.to);
    }

    /// A picture may reach over values that are in order each for itself.
    void searchAll()
    {
        const QByteArray bytes = m_block.bytes(); // as it was: what is wiped must not hide what follows
        const auto rest = QByteArrayView(bytes).sliced(TiffBlock::kHeaderSize);
        for (const FoundPicture &found : plainPicturesIn(rest, SearchIn::Mixture)) {
            const qsizetype from = TiffBlock::kHeaderSize + found.from;
            const auto next =
                std::find_if(m_used.begin(), m_used.end(), [=](const BlockRange &r) { return r.to > from; });
            const bool hasEnd = TiffBlock::kHeaderSize + found.to < bytes.size();
            wipePicture(found, TiffBlock::kHeaderSize, hasEnd || next == m_used.end() ? bytes.size() : next->to);
        }
    }

    void wipePicture(const FoundPicture &found, qsizetype base, qsizetype limit)
    {
        const qsizetype to = std::min(base + found.to, limit);
        m_leftOut.add(QStringLiteral("%1 in the EXIF block").arg(QLatin1String(found.kind)), to - base - found.from);
        m_block.wipe(base + found.from, to);
    }

    TiffBlock &m_block;
    const TiffBlock m_source; ///< as it was
    LeftOut &m_leftOut;
    std::set<quint32> m_seen;
    std::vector<BlockRange> m_notes;
    std::vector<BlockRange> m_used;
    std::vector<TiffBlock::Directory> m_removed; ///< entries that were taken out of their directories
};

} // namespace

void keepHarmless(TiffBlock &block, LeftOut &leftOut)
{
    Filter(block, leftOut).run();
}

} // namespace hazelmark
