#include "BigTiffBlocks.h"

#include "TiffBlock.h"
#include "TiffTags.h"

#include <algorithm>

namespace hazelmark {

namespace {

constexpr qsizetype kHeaderSize = 16;
constexpr qsizetype kEntrySize = 20;
constexpr qsizetype kInlineSize = 8;

/// Of one directory.
constexpr quint64 kMostEntries = 4096;
/// Of the EXIF block.
constexpr qsizetype kMostBytes = 1024 * 1024;

constexpr quint16 kLong = 4;

class Converter
{
public:
    Converter(QFile &file, bool (*isWanted)(quint16))
        : m_file(file)
        , m_isWanted(isWanted)
        , m_header(bytesAt(0, kHeaderSize))
        , m_isBigEndian(m_header.startsWith('M'))
    {
    }

    EmbeddedBlocks blocks()
    {
        if (m_header.size() < kHeaderSize)
            return {};
        m_block = m_header.left(2) + tiffBytes(quint16(42), m_isBigEndian) + QByteArray(4, '\0');
        const quint32 first = addDirectory(number<quint64>(m_header, 8), Level::First);
        if (first != 0)
            m_blocks.exif = m_block.replace(4, 4, tiffBytes(first, m_isBigEndian));
        if (!m_blocks.iptc.startsWith(kIptcRecordMarker))
            m_blocks.iptc.clear(); // of another byte order than its type pretends
        return m_blocks;
    }

private:
    enum class Level { First, Second, Third };

    struct Entry
    {
        quint16 tag;
        quint16 type;
        quint64 count;
        QByteArray value; ///< empty when it cannot be had
    };

    template <typename Number>
    Number number(const QByteArray &bytes, qsizetype at) const
    {
        return tiffNumber<Number>(bytes, at, m_isBigEndian);
    }

    QByteArray bytesAt(quint64 offset, qint64 count)
    {
        return offset < quint64(m_file.size()) && m_file.seek(qint64(offset)) ? m_file.read(count) : QByteArray();
    }

    Entry entryAt(const QByteArray &directory, qsizetype at)
    {
        Entry entry{
            number<quint16>(directory, at), number<quint16>(directory, at + 2), number<quint64>(directory, at + 4), {}};
        const qint64 unit = entry.type < kTiffTypeSizes.size() ? kTiffTypeSizes[entry.type] : 0;
        if (unit == 0 || entry.count > quint64(kMaxBlockSize / unit))
            return entry;
        const qint64 size = qint64(entry.count) * unit;
        const bool isPacket = entry.tag == tifftag::kXmp || entry.tag == tifftag::kIptc;
        if (size <= kInlineSize)
            entry.value = directory.mid(at + 12, size);
        else if (isPacket || size <= kMostBytes - m_block.size())
            entry.value = bytesAt(number<quint64>(directory, at + 12), size);
        if (entry.value.size() < size)
            entry.value.clear();
        return entry;
    }

    /// Appends the file's directory to the block, after what it refers to; its place in the block, 0 for an empty one.
    quint32 addDirectory(quint64 offset, Level level)
    {
        const QByteArray count = bytesAt(offset, sizeof(quint64));
        if (count.size() < qsizetype(sizeof(quint64)))
            return 0;
        const quint64 stated = std::min(number<quint64>(count, 0), kMostEntries);
        const QByteArray source = bytesAt(offset + sizeof(quint64), qint64(stated) * kEntrySize);
        TiffEntries entries;
        for (qsizetype at = 0; at + kEntrySize <= source.size(); at += kEntrySize) {
            const quint16 tag = number<quint16>(source, at);
            if (entries.count(tag) == 0)
                take(entryAt(source, at), level, entries);
        }
        if (entries.empty())
            return 0;
        const auto place = quint32(m_block.size());
        m_block += tiffDirectory(entries, m_isBigEndian);
        return place;
    }

    void take(const Entry &entry, Level level, TiffEntries &entries)
    {
        if (entry.value.isEmpty())
            return;
        const bool isFirst = level == Level::First;
        if (isFirst && entry.tag == tifftag::kXmp)
            m_blocks.xmp = entry.value;
        else if (isFirst && entry.tag == tifftag::kIptc)
            m_blocks.iptc = entry.value;
        else if (isFirst && (entry.tag == tifftag::kExifDirectory || entry.tag == tifftag::kGpsDirectory))
            takeDirectory(entry, Level::Second, entries);
        else if (level == Level::Second && entry.tag == tifftag::kInteroperabilityDirectory)
            takeDirectory(entry, Level::Third, entries);
        else if (entry.type <= kLastTiffType && (!isFirst || m_isWanted(entry.tag)))
            entries[entry.tag] = blockEntry(entry.tag, entry.type, quint32(entry.count), entry.value);
    }

    void takeDirectory(const Entry &pointer, Level level, TiffEntries &entries)
    {
        const quint64 offset = pointer.value.size() == sizeof(quint64)   ? number<quint64>(pointer.value, 0)
                               : pointer.value.size() == sizeof(quint32) ? number<quint32>(pointer.value, 0)
                                                                         : 0;
        const quint32 place = addDirectory(offset, level);
        if (place != 0)
            entries[pointer.tag] = blockEntry(pointer.tag, kLong, 1, tiffBytes(place, m_isBigEndian));
    }

    QByteArray blockEntry(quint16 tag, quint16 type, quint32 count, const QByteArray &value)
    {
        QByteArray field = value.leftJustified(TiffBlock::kInlineSize, '\0');
        if (value.size() > TiffBlock::kInlineSize) {
            field = tiffBytes(quint32(m_block.size()), m_isBigEndian);
            m_block += evenlyLong(value);
        }
        return tiffBytes(tag, m_isBigEndian) + tiffBytes(type, m_isBigEndian) + tiffBytes(count, m_isBigEndian) + field;
    }

    QFile &m_file;
    bool (*const m_isWanted)(quint16);
    const QByteArray m_header;
    const bool m_isBigEndian;
    QByteArray m_block;
    EmbeddedBlocks m_blocks;
};

} // namespace

bool isBigTiff(QFile &file)
{
    const QByteArray head = file.seek(0) ? file.read(4) : QByteArray();
    return head == QByteArray("II+\0", 4) || head == QByteArray("MM\0+", 4);
}

EmbeddedBlocks readBigTiffBlocks(QFile &file, bool (*isWanted)(quint16 tag))
{
    return Converter(file, isWanted).blocks();
}

} // namespace hazelmark
