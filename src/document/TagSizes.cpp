#include "TagSizes.h"

#include "ExifDirectories.h"
#include "TiffBlock.h"
#include "TiffTags.h"

#include <algorithm>
#include <optional>
#include <set>
#include <vector>

namespace hazelmark {

namespace {

constexpr bool leadsToDirectories(quint16 tag)
{
    return tag == tifftag::kSubDirectories || tag == tifftag::kExifDirectory || tag == tifftag::kGpsDirectory ||
           tag == tifftag::kInteroperabilityDirectory;
}

/// Walks the directories of a TIFF structure, of which `read` hands out pieces.
template <typename Read>
class TagWalk
{
public:
    TagWalk(const Read &read, qint64 size, qint64 mostXmp)
        : m_read(read)
        , m_size(size)
        , m_mostXmp(mostXmp)
        , m_header(read(0, TiffBlock::kHeaderSize))
    {
    }

    bool isPlausible()
    {
        constexpr size_t kMostDirectories = 64;
        constexpr qint64 kShared = 64 * 1024;
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
    static constexpr qint64 kMost = qint64(1) << 30;

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
            m_sum += entry.tag == tifftag::kXmp && size > m_mostXmp ? kMost + 1 : size;
            if (leadsToDirectories(entry.tag))
                takeOffsets(bytes, entry);
        }
    }

    void takeOffsets(const QByteArray &bytes, const TiffBlock::Entry &entry)
    {
        constexpr qint64 kMostBytes = 64 * 4;
        const QByteArray offsets = entry.statedSize <= TiffBlock::kInlineSize
                                       ? bytes.mid(entry.position + 8, 4)
                                       : m_read(entry.valueOffset, std::min(entry.statedSize, kMostBytes));
        for (qsizetype at = 0; at + 4 <= offsets.size(); at += 4)
            m_next.push_back(tiffNumber<quint32>(offsets, at, isBigEndian()));
    }

    bool isBigEndian() const { return m_header.startsWith('M'); }

    const Read &m_read;
    const qint64 m_size;
    const qint64 m_mostXmp;
    const QByteArray m_header;
    std::vector<quint32> m_next;
    std::set<quint32> m_seen;
    qint64 m_sum = 0;
};

} // namespace

bool hasPlausibleTags(const QByteArray &exif)
{
    const auto read = [&](qint64 offset, qint64 count) { return exif.mid(offset, count); };
    return TagWalk(read, exif.size(), exif.size()).isPlausible(); // a packet is taken out before
}

bool hasPlausibleTags(QFile &tiff)
{
    const auto read = [&](qint64 offset, qint64 count) { return tiff.seek(offset) ? tiff.read(count) : QByteArray(); };
    constexpr qint64 kMostXmp = 32 * 1024; // the time for a packet grows with the square of its size
    return TagWalk(read, tiff.size(), kMostXmp).isPlausible();
}

QByteArray withoutUnusualNote(const QByteArray &exif)
{
    constexpr qsizetype kMostUsual = 384 * 1024;
    if (exif.size() <= kMostUsual)
        return exif;
    std::optional<TiffBlock> block = TiffBlock::of(exif);
    if (!block)
        return exif;
    const auto directory = block->directoryAt(exifDirectory(*block));
    if (!directory)
        return exif;
    for (const TiffBlock::Entry &entry : directory->entries) {
        if (entry.tag == tifftag::kMakerNote)
            block->setNumber(entry, 0); // too short for any maker's
    }
    return block->bytes();
}

} // namespace hazelmark
