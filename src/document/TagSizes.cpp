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

bool isPlausible(const TiffCursor &cursor)
{
    constexpr size_t kMostDirectories = 64;
    constexpr quint64 kMostBelow = 64;
    constexpr qint64 kShared = 64 * 1024;
    constexpr qint64 kMost = qint64(1) << 30;
    qint64 sum = 0;
    std::set<quint64> seen;
    std::vector<quint64> next = {cursor.firstDirectoryOffset()};
    while (!next.empty()) {
        const quint64 offset = next.back();
        next.pop_back();
        if (offset == 0 || !seen.insert(offset).second)
            continue;
        const auto directory = cursor.directoryAt(offset);
        if (seen.size() > kMostDirectories)
            return false;
        if (!directory)
            continue;
        next.push_back(directory->next);
        for (const TiffEntry &entry : directory->entries) {
            const auto size = std::max(entry.statedSize, qint64(entry.count)); // types that do not exist: bytes
            if (entry.valueOffset + size > cursor.size())
                continue;
            sum += size;
            const std::vector<quint64> below =
                leadsToDirectories(entry.tag) ? cursor.numbers(entry, kMostBelow) : std::vector<quint64>();
            next.insert(next.end(), below.begin(), below.end());
        }
        if (sum > std::min(kMost, 2 * cursor.size() + kShared))
            return false;
    }
    return true;
}

} // namespace

bool hasPlausibleTags(const QByteArray &exif)
{
    const auto cursor = TiffCursor::of(exif);
    return !cursor || isPlausible(*cursor);
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
