#include "TagSizes.h"

#include "TiffBlock.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace hazelmark {

namespace {

constexpr quint16 kSubDirectories = 0x014a;
constexpr quint16 kExifDirectory = 0x8769;
constexpr quint16 kGpsDirectory = 0x8825;
constexpr quint16 kInteroperabilityDirectory = 0xa005;
constexpr quint16 kMakerNote = 0x927c;

constexpr bool leadsToDirectories(quint16 tag)
{
    return tag == kSubDirectories || tag == kExifDirectory || tag == kGpsDirectory || tag == kInteroperabilityDirectory;
}

/// Walks the directories of a TIFF structure, of which `read` hands out pieces.
template <typename Read>
class TagWalk
{
public:
    TagWalk(const Read &read, qint64 size)
        : m_read(read)
        , m_size(size)
        , m_header(read(0, TiffBlock::kHeaderSize))
    {
    }

    bool isPlausible()
    {
        constexpr size_t kMostDirectories = 64;
        constexpr qint64 kShared = 64 * 1024;
        constexpr qint64 kMost = qint64(1) << 30;
        const std::optional<TiffBlock> head = TiffBlock::of(m_header);
        if (!head)
            return true; // nothing that is read as tags
        m_next = {head->firstDirectoryOffset()};
        while (!m_next.empty()) {
            const quint32 offset = m_next.back();
            m_next.pop_back();
            if (offset == 0 || !m_seen.insert(offset).second)
                continue;
            if (m_seen.size() > kMostDirectories)
                return false;
            takeDirectory(offset);
            if (m_sum > std::min(kMost, 2 * m_size + kShared))
                return false;
        }
        return true;
    }

private:
    void takeDirectory(quint32 offset)
    {
        const QByteArray count = m_read(offset, 2);
        if (count.size() < 2)
            return;
        // A block with this one directory, so that offsets in its entries do not lie inside it but for small values.
        QByteArray bytes = m_header;
        bytes.replace(4, 4, tiffBytes(quint32(TiffBlock::kHeaderSize), isBigEndian()));
        bytes += m_read(offset, 2 + tiffNumber<quint16>(count, 0, isBigEndian()) * TiffBlock::kEntrySize + 4);
        const std::optional<TiffBlock> block = TiffBlock::of(bytes);
        const auto directory = block->directoryAt(TiffBlock::kHeaderSize);
        if (!directory)
            return;
        m_next.push_back(directory->next);
        for (const TiffBlock::Entry &entry : directory->entries) {
            const qint64 size = std::max<qint64>(entry.statedSize, entry.count); // types that do not exist: bytes
            if (entry.valueOffset + size > m_size)
                continue;
            m_sum += size;
            if (leadsToDirectories(entry.tag))
                takeOffsets(bytes, entry);
        }
    }

    void takeOffsets(const QByteArray &bytes, const TiffBlock::Entry &entry)
    {
        constexpr qint64 kMost = 64 * 4;
        const QByteArray offsets = entry.statedSize <= TiffBlock::kInlineSize
                                       ? bytes.mid(entry.position + 8, 4)
                                       : m_read(entry.valueOffset, std::min(entry.statedSize, kMost));
        for (qsizetype at = 0; at + 4 <= offsets.size(); at += 4)
            m_next.push_back(tiffNumber<quint32>(offsets, at, isBigEndian()));
    }

    bool isBigEndian() const { return m_header.startsWith('M'); }

    const Read &m_read;
    const qint64 m_size;
    const QByteArray m_header;
    std::vector<quint32> m_next;
    std::set<quint32> m_seen;
    qint64 m_sum = 0;
};

/// The size of the value if it is large and lies in the block; else 0.
qint64 largeValueAt(const QByteArray &block, qsizetype at, bool isBigEndian)
{
    constexpr std::array<quint8, 14> kTypeSizes = {1, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    constexpr qint64 kLarge = 16 * 1024;
    const qint64 count = tiffNumber<quint32>(block, at + 4, isBigEndian);
    if (count == 0 || count > block.size())
        return 0;
    const auto type = tiffNumber<quint16>(block, at + 2, isBigEndian);
    const qint64 size = count * (type < kTypeSizes.size() ? kTypeSizes[type] : 1);
    return size > kLarge && size + tiffNumber<quint32>(block, at + 8, isBigEndian) <= block.size() ? size : 0;
}

/// Whether there is anything like a directory with values that are several times as large as the block.
bool couldHoldHeavyDirectory(const QByteArray &block, bool isBigEndian)
{
    constexpr qsizetype kMostEntries = 256; // that Exiv2 reads
    constexpr qsizetype kMostTimes = 32;    // small numbers side by side look like some large values, too
    for (qsizetype phase = 0; phase < TiffBlock::kEntrySize; ++phase) {
        std::array<qint64, kMostEntries> sizes = {};
        qint64 sum = 0;
        size_t index = 0;
        for (qsizetype at = phase; at + TiffBlock::kEntrySize <= block.size(); at += TiffBlock::kEntrySize) {
            const qint64 size = largeValueAt(block, at, isBigEndian);
            sum += size - std::exchange(sizes[index++ % kMostEntries], size);
            if (sum > kMostTimes * block.size())
                return true;
        }
    }
    return false;
}

} // namespace

bool hasPlausibleTags(const QByteArray &exif)
{
    const auto read = [&](qint64 offset, qint64 count) { return exif.mid(offset, count); };
    return TagWalk(read, exif.size()).isPlausible();
}

bool hasPlausibleTags(QFile &tiff)
{
    const auto read = [&](qint64 offset, qint64 count) { return tiff.seek(offset) ? tiff.read(count) : QByteArray(); };
    return TagWalk(read, tiff.size()).isPlausible();
}

QByteArray withoutHeavyNote(const QByteArray &exif)
{
    constexpr qsizetype kMostUsual = 128 * 1024; // two segments of a JPEG file
    constexpr qsizetype kMostSearched = 5 * 512 * 1024;
    if (exif.size() <= kMostUsual ||
        (exif.size() <= kMostSearched && !couldHoldHeavyDirectory(exif, true) && !couldHoldHeavyDirectory(exif, false)))
        return exif;
    std::optional<TiffBlock> block = TiffBlock::of(exif);
    if (!block)
        return exif;
    const auto first = block->directoryAt(block->firstDirectoryOffset());
    const TiffBlock::Entry *pointer = first ? first->find(kExifDirectory) : nullptr;
    const auto directory = block->directoryAt(pointer ? block->number(*pointer).value_or(0) : 0);
    if (!directory)
        return exif;
    for (const TiffBlock::Entry &entry : directory->entries) {
        if (entry.tag == kMakerNote)
            block->setNumber(entry, 0); // too short for any maker's
    }
    return block->bytes();
}

} // namespace hazelmark
