#include "EmbeddedPictures.h"

#include "TiffTags.h"

#include <QtEndian>

#include <algorithm>

namespace hazelmark {

namespace {

constexpr quint16 kStripOffsets = 0x0111;
constexpr quint16 kStripByteCounts = 0x0117;
constexpr quint16 kJpegOffset = 0x0201;
constexpr quint16 kJpegLength = 0x0202;

void addUsed(const TiffBlock &block, quint32 offset, std::vector<BlockRange> &used)
{
    const std::optional<TiffBlock::Directory> directory = block.directoryAt(offset);
    if (!directory)
        return;
    used.push_back({directory->offset, directory->offset + directory->size()});
    for (const TiffBlock::Entry &entry : directory->entries) {
        if (entry.valueSize > TiffBlock::kInlineSize)
            used.push_back({entry.valueOffset, entry.valueOffset + entry.valueSize});
    }
}

quint32 subdirectory(const TiffBlock &block, quint32 parent, quint16 tag)
{
    const std::optional<TiffBlock::Directory> directory = block.directoryAt(parent);
    const TiffBlock::Entry *pointer = directory ? directory->find(tag) : nullptr;
    return pointer ? block.number(*pointer).value_or(0) : 0;
}

/// Zeroes what of the range nothing uses.
void wipeUnused(TiffBlock &block, const std::vector<BlockRange> &used, BlockRange range)
{
    qsizetype from = range.from;
    for (const BlockRange &kept : used) {
        if (kept.from >= range.to)
            break;
        block.wipe(from, std::min(kept.from, range.to));
        from = std::max(from, kept.to);
    }
    block.wipe(from, range.to);
}

/// Follows the markers of a JPEG stream.
class JpegStream
{
public:
    /// `start`: the place of the second byte of the start marker. (The first is overwritten in the previews of some
    /// makers, so it is not looked at.)
    /// Every step is taken off `budget`: blocks can be made in which each of a million streams leads through the rest.
    JpegStream(const QByteArray &bytes, qsizetype start, qsizetype limit, qsizetype &budget)
        : m_bytes(bytes)
        , m_start(start)
        , m_at(start + 1)
        , m_limit(limit)
        , m_budget(budget)
    {
    }

    /// Where the stream ends: behind its end marker, or at the limit when it is cut off. Nothing when there is none.
    std::optional<qsizetype> end()
    {
        while (m_at + 1 < m_limit) {
            if (byteAt(m_at) != 0xff)
                return std::nullopt;
            const int marker = byteAt(m_at + 1);
            if (marker == kEndOfImage)
                return isStream() ? std::optional(m_at + 2) : std::nullopt;
            if (!skipSegment(marker))
                return isStream() ? std::optional(m_limit) : std::nullopt;
        }
        return isStream() ? std::optional(m_limit) : std::nullopt;
    }

private:
    static constexpr int kEndOfImage = 0xd9;
    static constexpr int kStartOfScan = 0xda;

    int byteAt(qsizetype position) const { return quint8(m_bytes[position]); }

    /// Two whole segments in a row, or one behind a proper start marker, are no accident.
    bool isStream() const { return m_segments >= (byteAt(m_start - 1) == 0xff ? 1 : 2); }

    /// False when the segment goes beyond the limit.
    bool skipSegment(int marker)
    {
        constexpr int kFirstSegmentMarker = 0xc0;
        if (marker < kFirstSegmentMarker || m_at + 4 > m_limit)
            return false;
        const int length = qFromBigEndian<quint16>(m_bytes.constData() + m_at + 2);
        m_at += 2 + length;
        if (length < 2 || m_at > m_limit)
            return false;
        ++m_segments;
        --m_budget;
        if (marker == kStartOfScan)
            skipScan();
        return true;
    }

    void skipScan()
    {
        for (; m_at + 1 < m_limit; ++m_at, --m_budget) {
            const int next = byteAt(m_at + 1);
            const bool isData = byteAt(m_at) != 0xff || next == 0 || next == 0xff || (next >= 0xd0 && next <= 0xd7);
            if (!isData)
                return;
        }
        m_at = m_limit;
    }

    const QByteArray &m_bytes;
    const qsizetype m_start;
    qsizetype m_at;
    const qsizetype m_limit;
    qsizetype &m_budget;
    int m_segments = 0;
};

/// Where values begin and end, in ascending order: a stream that is cut off ends with the value that it lies in.
std::vector<qsizetype> boundaries(const TiffBlock &block)
{
    std::vector<qsizetype> edges{block.bytes().size()};
    for (const BlockRange &range : usedRanges(block)) {
        edges.push_back(range.from);
        edges.push_back(range.to);
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

} // namespace

std::vector<BlockRange> usedRanges(const TiffBlock &block)
{
    std::vector<BlockRange> used{{0, TiffBlock::kHeaderSize}};
    for (const quint32 offset : metadataDirectories(block))
        addUsed(block, offset, used);
    std::sort(used.begin(), used.end(), [](const BlockRange &a, const BlockRange &b) { return a.from < b.from; });
    return used;
}

quint32 exifDirectory(const TiffBlock &block)
{
    return subdirectory(block, block.firstDirectoryOffset(), tifftag::kExifDirectory);
}

std::vector<quint32> metadataDirectories(const TiffBlock &block)
{
    const quint32 first = block.firstDirectoryOffset();
    const quint32 exif = exifDirectory(block);
    std::vector<quint32> offsets{first, exif, subdirectory(block, first, tifftag::kGpsDirectory),
                                 subdirectory(block, exif, tifftag::kInteroperabilityDirectory)};
    offsets.erase(std::remove(offsets.begin(), offsets.end(), 0), offsets.end());
    return offsets;
}

bool wipeEmbeddedPictures(TiffBlock &block)
{
    constexpr char kStartOfImage = char(0xd8);
    constexpr qsizetype kStepsPerByte = 16;
    const std::vector<qsizetype> edges = boundaries(block);
    const QByteArray bytes = block.bytes(); // as it was: what is wiped must not hide what follows
    qsizetype budget = bytes.size() * kStepsPerByte;
    for (qsizetype at = bytes.indexOf(kStartOfImage, 1); at >= 0; at = bytes.indexOf(kStartOfImage, at + 1)) {
        if (at + 2 >= bytes.size() || bytes[at + 1] != char(0xff))
            continue;
        const qsizetype limit = *std::upper_bound(edges.begin(), edges.end(), at);
        const std::optional<qsizetype> end = JpegStream(bytes, at, limit, budget).end();
        if (budget < 0)
            return false;
        if (!end)
            continue;
        block.wipe(at - 1, *end);
        at = *end - 1;
    }
    return true;
}

void wipeUnreferenced(TiffBlock &block)
{
    wipeUnused(block, usedRanges(block), {0, block.bytes().size()});
}

void removeThumbnail(TiffBlock &block)
{
    const std::optional<TiffBlock::Directory> first = block.directoryAt(block.firstDirectoryOffset());
    if (!first)
        return;
    const std::vector<BlockRange> used = usedRanges(block);
    block.endChainAt(*first);
    constexpr int kMostDirectories = 16; // one is usual; chains may be endless
    quint32 offset = first->next;
    for (int i = 0; i < kMostDirectories; ++i) {
        const std::optional<TiffBlock::Directory> directory = block.directoryAt(offset);
        if (!directory)
            return;
        for (const auto &[offsetTag, sizeTag] :
             {std::pair(kJpegOffset, kJpegLength), std::pair(kStripOffsets, kStripByteCounts)}) {
            const TiffBlock::Entry *offsets = directory->find(offsetTag);
            const TiffBlock::Entry *sizes = directory->find(sizeTag);
            if (!offsets || !sizes)
                continue;
            const std::vector<quint32> from = block.numbers(*offsets);
            const std::vector<quint32> size = block.numbers(*sizes);
            // What nothing refers to behind a thumbnail is a larger preview, or what an earlier one has left there.
            if (!from.empty() && !size.empty())
                wipeUnused(block, used, {qsizetype(*std::min_element(from.begin(), from.end())), block.bytes().size()});
        }
        // The directory's values stay: writers share them with the first directory.
        wipeUnused(block, used, {directory->offset, directory->offset + directory->size()});
        offset = directory->next;
    }
}

} // namespace hazelmark
