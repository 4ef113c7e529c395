#include "TiffBlocks.h"

#include "BigTiffBlocks.h"
#include "ExifDirectories.h"
#include "TiffTags.h"

#include <QFile>

#include <algorithm>
#include <optional>

namespace hazelmark {

namespace {

/// The metadata must lie within so many bytes from the start of the file; as many may be taken from behind that.
constexpr qint64 kHeadSize = 1024 * 1024;

enum class Purpose { Carry, Show };

bool isShown(quint16 tag)
{
    return !isTiffDataTag(tag);
}

bool isCarried(quint16 tag)
{
    return isShown(tag) && !isTiffStorageTag(tag);
}

/// Takes a file's first directory apart and puts its metadata together again as a block of its own.
class BlockMaker
{
public:
    BlockMaker(QFile &file, Purpose purpose)
        : m_file(file)
        , m_purpose(purpose)
        , m_head(evenlyLong(file.read(kHeadSize)))
        , m_isBigEndian(m_head.startsWith('M'))
    {
    }

    EmbeddedBlocks blocks()
    {
        EmbeddedBlocks blocks;
        if (!TiffBlock::isTiffStructure(m_head))
            return blocks;
        const auto source = TiffBlock::of(withDirectory(m_head, directoryAt(firstOffset())));
        const auto directory = source->directoryAt(source->firstDirectoryOffset());
        if (!directory)
            return blocks;
        for (const TiffBlock::Entry &entry : directory->entries) {
            if (entry.tag == tifftag::kXmp && blocks.xmp.isEmpty())
                blocks.xmp = valueOf(*source, entry);
            else if (entry.tag == tifftag::kIptc && blocks.iptc.isEmpty())
                blocks.iptc = valueOf(*source, entry);
            else if (isWanted(entry.tag))
                take(*source, entry);
        }
        if (!blocks.iptc.startsWith(kIptcRecordMarker))
            blocks.iptc.clear(); // of another byte order than its type pretends
        if (!m_entries.empty())
            blocks.exif = exifBlock();
        if (blocks.exif.isEmpty() && m_purpose == Purpose::Show)
            blocks.exif = compactBlock();
        return blocks;
    }

private:
    QByteArray bytesAt(qint64 offset, qint64 count) { return m_file.seek(offset) ? m_file.read(count) : QByteArray(); }

    bool isWanted(quint16 tag) const { return m_purpose == Purpose::Show ? isShown(tag) : isCarried(tag); }

    quint32 firstOffset() const { return tiffNumber<quint32>(m_head, 4, m_isBigEndian); }

    /// As it lies in the file, which may be anywhere.
    QByteArray directoryAt(qint64 offset)
    {
        const QByteArray count = bytesAt(offset, 2);
        if (count.size() < 2)
            return {};
        return bytesAt(offset, 2 + tiffNumber<quint16>(count, 0, m_isBigEndian) * TiffBlock::kEntrySize + 4);
    }

    /// The bytes with the directory behind them, to which their header leads.
    QByteArray withDirectory(QByteArray bytes, const QByteArray &directory) const
    {
        bytes.replace(4, 4, tiffBytes(quint32(bytes.size()), m_isBigEndian));
        return bytes + directory;
    }

    bool isInHead(const TiffBlock::Entry &entry) const
    {
        return entry.statedSize <= TiffBlock::kInlineSize || entry.valueOffset + entry.statedSize <= m_head.size();
    }

    QByteArray valueOf(const TiffBlock &source, const TiffBlock::Entry &entry)
    {
        if (entry.statedSize > kMaxBlockSize)
            return {};
        return entry.statedSize <= TiffBlock::kInlineSize ? source.bytes().mid(entry.valueOffset, entry.statedSize)
                                                          : bytesAt(entry.valueOffset, entry.statedSize);
    }

    void take(const TiffBlock &source, const TiffBlock::Entry &entry)
    {
        const bool isInside = isInHead(entry);
        if (entry.statedSize == 0 || (!isInside && entry.statedSize > kHeadSize - m_distantSize))
            return;
        m_entries[entry.tag] = source.bytes().mid(entry.position, TiffBlock::kEntrySize);
        if (!isInside) {
            m_distantValues[entry.tag] = valueOf(source, entry);
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
            if (!directory || directory->offset + directory->size() > m_head.size() ||
                !std::all_of(directory->entries.begin(), directory->entries.end(),
                             [this](const TiffBlock::Entry &entry) { return isInHead(entry); }))
                return std::nullopt;
        }
        qsizetype used = 0;
        for (const BlockRange &range : usedRanges(block)) {
            if (range.to <= m_head.size())
                used = std::max(used, range.to);
        }
        return used + used % 2;
    }

    QByteArray exifBlock() const
    {
        const std::optional<qsizetype> headSize = usedHeadSize(assembled(m_head.size()));
        if (!headSize)
            return {};
        TiffBlock block = assembled(*headSize);
        wipeUnreferenced(block);
        return block.bytes();
    }

    /// The directories with their values close together, wherever they lie in the file.
    QByteArray compactBlock()
    {
        QByteArray bytes = m_head.left(TiffBlock::kHeaderSize);
        const TiffEntries entries = compactEntries(firstOffset(), bytes, true);
        return withDirectory(bytes, tiffDirectory(entries, m_isBigEndian));
    }

    /// The entries of the file's directory at `offset`; their values are appended to `bytes`.
    TiffEntries compactEntries(quint32 offset, QByteArray &bytes, bool isFirst)
    {
        TiffEntries entries;
        const auto source = TiffBlock::of(m_head.left(TiffBlock::kHeaderSize) + directoryAt(offset));
        const auto directory = source->directoryAt(TiffBlock::kHeaderSize);
        if (!directory)
            return entries;
        for (const TiffBlock::Entry &entry : directory->entries) {
            const quint16 tag = entry.tag;
            if (!isWanted(tag) || tag == tifftag::kMakerNote || tag == tifftag::kInteroperabilityDirectory ||
                entries.count(tag) > 0)
                continue;
            QByteArray compact = source->bytes().mid(entry.position, TiffBlock::kEntrySize);
            const bool isPointer = isFirst && (tag == tifftag::kExifDirectory || tag == tifftag::kGpsDirectory);
            if (isPointer || entry.statedSize > TiffBlock::kInlineSize) {
                const QByteArray value = isPointer ? compactDirectory(*source, entry, bytes) : smallValue(entry, bytes);
                if (value.isEmpty())
                    continue;
                compact.replace(8, 4, tiffBytes(quint32(bytes.size()), m_isBigEndian));
                bytes += evenlyLong(value);
            }
            entries[tag] = compact;
        }
        return entries;
    }

    QByteArray compactDirectory(const TiffBlock &source, const TiffBlock::Entry &pointer, QByteArray &bytes)
    {
        return tiffDirectory(compactEntries(source.number(pointer).value_or(0), bytes, false), m_isBigEndian);
    }

    QByteArray smallValue(const TiffBlock::Entry &entry, const QByteArray &bytes)
    {
        constexpr qint64 kMostSize = 64 * 1024;
        if (entry.statedSize > kMostSize || bytes.size() + entry.statedSize > kHeadSize)
            return {};
        const QByteArray value = bytesAt(entry.valueOffset, entry.statedSize);
        return value.size() == entry.statedSize ? value : QByteArray();
    }

    QFile &m_file;
    const Purpose m_purpose;
    const QByteArray m_head;
    const bool m_isBigEndian;
    TiffEntries m_entries;
    std::map<uint16_t, QByteArray> m_distantValues;
    qint64 m_distantSize = 0; ///< bytes of these: a hostile directory may refer to the same ones thousands of times
};

EmbeddedBlocks blocksOf(const QString &path, Purpose purpose)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (isBigTiff(file))
        return readBigTiffBlocks(file, purpose == Purpose::Show ? isShown : isCarried);
    file.seek(0);
    return BlockMaker(file, purpose).blocks();
}

} // namespace

EmbeddedBlocks readTiffBlocks(const QString &path)
{
    return blocksOf(path, Purpose::Carry);
}

EmbeddedBlocks readTiffBlocksToShow(const QString &path)
{
    return blocksOf(path, Purpose::Show);
}

} // namespace hazelmark
