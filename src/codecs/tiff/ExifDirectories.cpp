#include "ExifDirectories.h"

#include "TiffTags.h"

#include <algorithm>

namespace hazelmark {

namespace {

void addUsed(const TiffBlock &block, quint32 offset, std::vector<BlockRange> &used)
{
    const std::optional<TiffBlock::Directory> directory = block.directoryAt(offset);
    if (!directory)
        return;
    used.push_back({directory->offset, directory->offset + directory->size});
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

void wipeUnreferenced(TiffBlock &block)
{
    wipeUnused(block, usedRanges(block), {0, block.bytes().size()});
}

} // namespace hazelmark
