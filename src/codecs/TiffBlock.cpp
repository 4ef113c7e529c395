#include "TiffBlock.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

constexpr quint16 kByte = 1;
constexpr quint16 kShort = 3;
constexpr quint16 kLong = 4;
constexpr quint16 kSignedLong = 9; // some writers give offsets this type
constexpr quint16 kDirectory = 13;

} // namespace

const TiffBlock::Entry *TiffBlock::Directory::find(quint16 tag) const
{
    const auto found = std::find_if(entries.begin(), entries.end(), [=](const Entry &e) { return e.tag == tag; });
    return found == entries.end() ? nullptr : &*found;
}

TiffBlock::TiffBlock(QByteArray bytes, bool isBigEndian)
    : m_bytes(std::move(bytes))
    , m_isBigEndian(isBigEndian)
{
}

bool TiffBlock::isTiffStructure(const QByteArray &bytes)
{
    return bytes.size() >= kHeaderSize &&
           (bytes.startsWith(QByteArray("II*\0", 4)) || bytes.startsWith(QByteArray("MM\0*", 4)));
}

std::optional<TiffBlock> TiffBlock::of(QByteArray bytes)
{
    if (!isTiffStructure(bytes))
        return std::nullopt;
    const bool isBigEndian = bytes.startsWith('M');
    return TiffBlock(std::move(bytes), isBigEndian);
}

std::optional<TiffBlock::Directory> TiffBlock::directoryAt(quint32 offset) const
{
    const qsizetype start = offset;
    if (start < kHeaderSize || start + 2 > m_bytes.size())
        return std::nullopt;
    Directory directory{start, {}, 0};
    const qsizetype count = number16(start);
    if (start + 2 + count * kEntrySize + 4 > m_bytes.size())
        return std::nullopt;
    for (qsizetype i = 0; i < count; ++i) {
        const qsizetype position = start + 2 + i * kEntrySize;
        Entry entry{position, number16(position), number16(position + 2), number32(position + 4), position + 8, 0, 0};
        if (entry.type <= kLastTiffType)
            entry.statedSize = qint64(kTiffTypeSizes[entry.type]) * entry.count;
        if (entry.statedSize > kInlineSize)
            entry.valueOffset = number32(position + 8);
        if (entry.valueOffset + entry.statedSize <= m_bytes.size())
            entry.valueSize = entry.statedSize;
        directory.entries.push_back(entry);
    }
    directory.next = number32(directory.nextPosition());
    return directory;
}

std::vector<quint32> TiffBlock::numbers(const Entry &entry) const
{
    std::vector<quint32> result;
    if (entry.valueSize == 0)
        return result;
    const bool isLong = entry.type == kLong || entry.type == kSignedLong || entry.type == kDirectory;
    if (!isLong && entry.type != kShort && entry.type != kByte)
        return result;
    const qsizetype step = kTiffTypeSizes[entry.type];
    for (qsizetype at = entry.valueOffset; at < entry.valueOffset + entry.valueSize; at += step)
        result.push_back(isLong ? number32(at) : entry.type == kShort ? number16(at) : quint8(m_bytes[at]));
    return result;
}

std::optional<quint32> TiffBlock::number(const Entry &entry) const
{
    if (entry.count != 1)
        return std::nullopt;
    const std::vector<quint32> all = numbers(entry);
    return all.empty() ? std::nullopt : std::optional(all.front());
}

void TiffBlock::setNumber(const Entry &entry, quint32 value)
{
    put16(entry.position + 2, kLong);
    put32(entry.position + 4, 1);
    put32(entry.position + 8, value);
}

void TiffBlock::keepEntries(const Directory &directory, const std::vector<Entry> &kept)
{
    QByteArray bytes = tiffBytes(quint16(kept.size()), m_isBigEndian);
    for (const Entry &entry : kept)
        bytes += m_bytes.mid(entry.position, kEntrySize);
    m_bytes.replace(directory.offset, directory.size(), bytes.leftJustified(directory.size(), '\0'));
}

void TiffBlock::wipe(qsizetype from, qsizetype to)
{
    const qsizetype start = std::clamp<qsizetype>(from, 0, m_bytes.size());
    const qsizetype end = std::clamp<qsizetype>(to, start, m_bytes.size());
    std::fill(m_bytes.begin() + start, m_bytes.begin() + end, '\0');
}

void TiffBlock::put16(qsizetype position, quint16 value)
{
    m_isBigEndian ? qToBigEndian(value, m_bytes.data() + position) : qToLittleEndian(value, m_bytes.data() + position);
}

void TiffBlock::put32(qsizetype position, quint32 value)
{
    m_isBigEndian ? qToBigEndian(value, m_bytes.data() + position) : qToLittleEndian(value, m_bytes.data() + position);
}

} // namespace hazelmark
