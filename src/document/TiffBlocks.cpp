#include "TiffBlocks.h"

#include "EmbeddedPictures.h"
#include "TiffTags.h"

#include <QFile>

#include <algorithm>
#include <optional>

namespace hazelmark {

namespace {

/// The metadata must lie within so many bytes from the start of the file; as many may be taken from behind that.
constexpr qint64 kHeadSize = 1024 * 1024;

constexpr quint16 kXmp = 0x02bc;
constexpr quint16 kIptc = 0x83bb;
constexpr char kIptcMarker = 0x1c;

/// Takes a file's first directory apart and puts its metadata together again as a block of its own.
class BlockMaker
{
public:
    explicit BlockMaker(QFile &file)
        : m_file(file)
        , m_head(evenlyLong(file.read(kHeadSize)))
        , m_isBigEndian(m_head.startsWith('M'))
    {
    }

    EmbeddedBlocks blocks()
    {
        EmbeddedBlocks blocks;
        if (!TiffBlock::isTiffStructure(m_head))
            return blocks;
        const auto source = TiffBlock::of(withDirectory(m_head, firstDirectory()));
        const auto directory = source->directoryAt(source->firstDirectoryOffset());
        if (!directory)
            return blocks;
        for (const TiffBlock::Entry &entry : directory->entries) {
            if (entry.tag == kXmp)
                blocks.xmp = valueOf(*source, entry);
            else if (entry.tag == kIptc)
                blocks.iptc = valueOf(*source, entry);
            else if (!isTiffStorageTag(entry.tag) && !isTiffDataTag(entry.tag))
                take(*source, entry);
        }
        if (!blocks.iptc.startsWith(kIptcMarker))
            blocks.iptc.clear(); // of another byte order than its type pretends
        if (!m_entries.empty())
            blocks.exif = exifBlock();
        return blocks;
    }

private:
    QByteArray bytesAt(qint64 offset, qint64 count) { return m_file.seek(offset) ? m_file.read(count) : QByteArray(); }

    /// As it lies in the file, which may be anywhere.
    QByteArray firstDirectory()
    {
        const qint64 offset = tiffNumber<quint32>(m_head, 4, m_isBigEndian);
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

    QFile &m_file;
    const QByteArray m_head;
    const bool m_isBigEndian;
    TiffEntries m_entries;
    std::map<uint16_t, QByteArray> m_distantValues;
    qint64 m_distantSize = 0; ///< bytes of these: a hostile directory may refer to the same ones thousands of times
};

} // namespace

EmbeddedBlocks readTiffBlocks(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? BlockMaker(file).blocks() : EmbeddedBlocks();
}

} // namespace hazelmark
