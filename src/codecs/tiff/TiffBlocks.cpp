#include "TiffBlocks.h"

#include "ExifDirectories.h"
#include "TiffTags.h"

#include <algorithm>

#include <tiff.h>

namespace hazelmark {

namespace {

/// The metadata must lie within so many bytes from the start of the file; as many may be taken from behind that, and as
/// many be laid next to each other.
constexpr qint64 kHeadSize = 1024 * 1024;

/// Of a directory whose tags are laid next to each other.
constexpr qint64 kMostEntries = 4096;

/// Tags that speak of the photo, or those that say how its pixels are stored.
enum class Wanted { Metadata, Storage };

/// Takes a file's first directory apart and puts its metadata together again as a block of its own.
class BlockMaker
{
public:
    BlockMaker(const SourceFile &source, const TiffCursor &cursor, Wanted wanted)
        : m_source(source)
        , m_cursor(cursor)
        , m_wanted(wanted)
        , m_isBigEndian(cursor.isBigEndian())
    {
    }

    EmbeddedBlocks blocks()
    {
        EmbeddedBlocks blocks;
        const auto directory = m_cursor.directoryAt(m_cursor.firstDirectoryOffset());
        if (!directory)
            return blocks;
        if (const TiffEntry *xmp = directory->find(tifftag::kXmp))
            blocks.xmp = m_cursor.value(*xmp, kMaxBlockSize);
        if (const TiffEntry *iptc = directory->find(tifftag::kIptc))
            blocks.iptc = m_cursor.value(*iptc, kMaxBlockSize);
        if (!blocks.iptc.startsWith(kIptcRecordMarker))
            blocks.iptc.clear(); // of another byte order than its type pretends
        if (!m_cursor.isBig())
            blocks.exif = placedBlock(*directory);
        if (blocks.exif.isEmpty())
            blocks.exif = compactBlock();
        blocks.lacksNote = m_lacksNote;
        return blocks;
    }

    /// The directories with their values next to each other, wherever they lie in the file.
    QByteArray compactBlock()
    {
        QByteArray block = (m_isBigEndian ? QByteArray("MM\0*", 4) : QByteArray("II*\0", 4)) + QByteArray(4, '\0');
        const TiffEntries entries = compactEntries(m_cursor.firstDirectoryOffset(), Level::First, block);
        return entries.empty() ? QByteArray() : withDirectory(block, tiffDirectory(entries, m_isBigEndian));
    }

private:
    enum class Level { First, Second, Third };

    bool isWanted(quint16 tag) const
    {
        return !isTiffDataTag(tag) && isTiffStorageTag(tag) == (m_wanted == Wanted::Storage);
    }

    /// The bytes with the directory behind them, to which their header leads.
    QByteArray withDirectory(QByteArray bytes, const QByteArray &directory) const
    {
        bytes.replace(4, 4, tiffBytes(quint32(bytes.size()), m_isBigEndian));
        return bytes + directory;
    }

    bool isInHead(const TiffEntry &entry) const
    {
        return entry.statedSize <= TiffBlock::kInlineSize || entry.valueOffset + entry.statedSize <= m_head.size();
    }

    /// Everything where it lies in the file; empty when that cannot be had.
    QByteArray placedBlock(const TiffDirectory &directory)
    {
        m_head = evenlyLong(m_source.bytesAt(0, kHeadSize));
        for (const TiffEntry &entry : directory.entries) {
            if (isWanted(entry.tag))
                take(entry);
        }
        const std::optional<qsizetype> headSize =
            m_entries.empty() ? std::nullopt : usedHeadSize(assembled(m_head.size()));
        if (!headSize)
            return {};
        TiffBlock block = assembled(*headSize);
        wipeUnreferenced(block);
        return block.bytes();
    }

    void take(const TiffEntry &entry)
    {
        const bool isInside = isInHead(entry);
        if (entry.statedSize == 0 || (!isInside && entry.statedSize > kHeadSize - m_distantSize))
            return;
        m_entries[entry.tag] = m_source.bytesAt(entry.position, TiffBlock::kEntrySize);
        if (!isInside) {
            m_distantValues[entry.tag] = m_cursor.value(entry, kHeadSize);
            m_distantSize += entry.statedSize;
        }
    }

    /// The head up to `headSize`, the values that lie behind it, the directory.
    TiffBlock assembled(qsizetype headSize) const
    {
        QByteArray bytes = m_head.left(headSize);
        TiffEntries entries = m_entries;
        for (const auto &[tag, value] : m_distantValues) {
            entries[tag].replace(8, 4, tiffBytes(quint32(bytes.size()), m_isBigEndian));
            bytes += evenlyLong(value);
        }
        return *TiffBlock::of(withDirectory(bytes, tiffDirectory(entries, m_isBigEndian)));
    }

    /// How much of the head the metadata takes; nothing when not all of it lies there.
    std::optional<qsizetype> usedHeadSize(const TiffBlock &block) const
    {
        for (const quint32 offset : metadataDirectories(block)) {
            if (offset == block.firstDirectoryOffset())
                continue;
            const auto directory = block.directoryAt(offset);
            if (!directory || directory->offset + directory->size > m_head.size() ||
                !std::all_of(directory->entries.begin(), directory->entries.end(),
                             [this](const TiffEntry &entry) { return isInHead(entry); }))
                return std::nullopt;
        }
        qsizetype used = 0;
        for (const BlockRange &range : usedRanges(block)) {
            if (range.to <= m_head.size())
                used = std::max(used, range.to);
        }
        return used + used % 2;
    }

    /// The entries of the file's directory at `offset`; their values are appended to the block.
    TiffEntries compactEntries(quint64 offset, Level level, QByteArray &block)
    {
        TiffEntries entries;
        const auto directory = m_cursor.directoryAt(offset, kMostEntries);
        for (const TiffEntry &entry : directory ? directory->entries : std::vector<TiffEntry>()) {
            if (!isWanted(entry.tag) || entries.count(entry.tag) > 0)
                continue;
            if (entry.tag == tifftag::kMakerNote && !m_cursor.isBig()) {
                m_lacksNote = true;
                continue;
            }
            const QByteArray compact =
                leadsBelow(entry.tag, level) ? compactPointer(entry, level, block) : compactEntry(entry, block);
            if (!compact.isEmpty())
                entries[entry.tag] = compact;
        }
        return entries;
    }

    static bool leadsBelow(quint16 tag, Level level)
    {
        return (level == Level::First && (tag == tifftag::kExifDirectory || tag == tifftag::kGpsDirectory)) ||
               (level == Level::Second && tag == tifftag::kInteroperabilityDirectory);
    }

    QByteArray compactPointer(const TiffEntry &pointer, Level level, QByteArray &block)
    {
        const Level below = level == Level::First ? Level::Second : Level::Third;
        const TiffEntries entries = compactEntries(m_cursor.number(pointer).value_or(0), below, block);
        if (entries.empty())
            return {};
        const auto place = quint32(block.size());
        block += tiffDirectory(entries, m_isBigEndian);
        return entryBytes(pointer.tag, TIFF_LONG, 1, tiffBytes(place, m_isBigEndian));
    }

    QByteArray compactEntry(const TiffEntry &entry, QByteArray &block)
    {
        const QByteArray value = m_cursor.value(entry, kHeadSize - block.size());
        if (value.isEmpty() || entry.type > kLastTiffType)
            return {};
        QByteArray field = value.leftJustified(TiffBlock::kInlineSize, '\0');
        if (value.size() > TiffBlock::kInlineSize) {
            field = tiffBytes(quint32(block.size()), m_isBigEndian);
            block += evenlyLong(value);
        }
        return entryBytes(entry.tag, entry.type, quint32(entry.count), field);
    }

    QByteArray entryBytes(quint16 tag, quint16 type, quint32 count, const QByteArray &field) const
    {
        return tiffBytes(tag, m_isBigEndian) + tiffBytes(type, m_isBigEndian) + tiffBytes(count, m_isBigEndian) + field;
    }

    const SourceFile &m_source;
    const TiffCursor &m_cursor;
    const Wanted m_wanted;
    const bool m_isBigEndian;
    QByteArray m_head;
    TiffEntries m_entries;
    std::map<uint16_t, QByteArray> m_distantValues;
    bool m_lacksNote = false;
    qint64 m_distantSize = 0; ///< bytes of these: a hostile directory may refer to the same ones thousands of times
};

} // namespace

EmbeddedBlocks readTiffBlocks(const SourceFile &source)
{
    const auto cursor = TiffCursor::of(source);
    return cursor ? BlockMaker(source, *cursor, Wanted::Metadata).blocks() : EmbeddedBlocks();
}

QByteArray readTiffStorage(const SourceFile &source)
{
    const auto cursor = TiffCursor::of(source);
    return cursor ? BlockMaker(source, *cursor, Wanted::Storage).compactBlock() : QByteArray();
}

} // namespace hazelmark
