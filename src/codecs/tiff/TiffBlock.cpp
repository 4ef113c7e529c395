#include "TiffBlock.h"

#include <algorithm>

#include <tiff.h>

namespace hazelmark {

bool TiffBlock::isTiffStructure(const QByteArray &bytes)
{
    const auto cursor = TiffCursor::of(bytes);
    return cursor && !cursor->isBig();
}

std::optional<TiffBlock> TiffBlock::of(QByteArray bytes)
{
    return isTiffStructure(bytes) ? std::optional(TiffBlock(std::move(bytes))) : std::nullopt;
}

std::optional<TiffBlock::Directory> TiffBlock::directoryAt(quint32 offset) const
{
    std::optional<Directory> directory = cursor().directoryAt(offset);
    return directory && directory->offset + directory->size <= m_bytes.size() ? directory : std::nullopt;
}

std::vector<quint32> TiffBlock::numbers(const Entry &entry) const
{
    const std::vector<quint64> all = cursor().numbers(entry, entry.count);
    return std::vector<quint32>(all.begin(), all.end());
}

std::optional<quint32> TiffBlock::number(const Entry &entry) const
{
    const std::optional<quint64> number = cursor().number(entry);
    return number ? std::optional(quint32(*number)) : std::nullopt;
}

void TiffBlock::setNumber(const Entry &entry, quint32 value)
{
    const bool isBig = isBigEndian();
    const QByteArray bytes =
        tiffBytes(quint16(TIFF_LONG), isBig) + tiffBytes(quint32(1), isBig) + tiffBytes(value, isBig);
    m_bytes.replace(entry.position + 2, bytes.size(), bytes);
}

void TiffBlock::keepEntries(const Directory &directory, const std::vector<Entry> &kept)
{
    QByteArray bytes = tiffBytes(quint16(kept.size()), isBigEndian());
    for (const Entry &entry : kept)
        bytes += m_bytes.mid(entry.position, kEntrySize);
    m_bytes.replace(directory.offset, directory.size, bytes.leftJustified(directory.size, '\0'));
}

void TiffBlock::wipe(qsizetype from, qsizetype to)
{
    const qsizetype start = std::clamp<qsizetype>(from, 0, m_bytes.size());
    const qsizetype end = std::clamp<qsizetype>(to, start, m_bytes.size());
    std::fill(m_bytes.begin() + start, m_bytes.begin() + end, '\0');
}

} // namespace hazelmark
