#include "TiffCursor.h"

#include <algorithm>

#include <tiff.h>

namespace hazelmark {

namespace {

constexpr qsizetype kHeaderSize = 8;
constexpr qsizetype kBigHeaderSize = 16;

} // namespace

const TiffEntry *TiffDirectory::find(quint16 tag) const
{
    const auto found = std::find_if(entries.begin(), entries.end(), [=](const TiffEntry &e) { return e.tag == tag; });
    return found == entries.end() ? nullptr : &*found;
}

TiffCursor::TiffCursor(Read read, qint64 size, const QByteArray &header)
    : m_read(std::move(read))
    , m_size(size)
    , m_isBigEndian(header.startsWith('M'))
    , m_isBig(numberAt(header, 2, 2) == TIFF_VERSION_BIG)
    , m_first(m_isBig ? numberAt(header, 8, 8) : numberAt(header, 4, 4))
{
}

std::optional<TiffCursor> TiffCursor::of(Read read, qint64 size)
{
    const QByteArray header = read(0, kBigHeaderSize);
    const auto startsWith = [&](const char *start) { return header.startsWith(QByteArray(start, 4)); };
    const bool isPlain = header.size() >= kHeaderSize && (startsWith("II*\0") || startsWith("MM\0*"));
    const bool isBig = header.size() >= kBigHeaderSize && (startsWith("II+\0") || startsWith("MM\0+"));
    if (!isPlain && !isBig)
        return std::nullopt;
    return TiffCursor(std::move(read), size, header);
}

std::optional<TiffCursor> TiffCursor::of(const SourceFile &source)
{
    return of([&source](qint64 offset, qint64 count) { return source.bytesAt(offset, count); }, source.size());
}

std::optional<TiffCursor> TiffCursor::of(const QByteArray &bytes)
{
    return of([&bytes](qint64 offset, qint64 count) { return bytes.mid(offset, count); }, bytes.size());
}

quint64 TiffCursor::numberAt(const QByteArray &bytes, qsizetype at, int size) const
{
    if (at + size > bytes.size())
        return 0;
    return size == 8   ? tiffNumber<quint64>(bytes, at, m_isBigEndian)
           : size == 4 ? tiffNumber<quint32>(bytes, at, m_isBigEndian)
           : size == 2 ? tiffNumber<quint16>(bytes, at, m_isBigEndian)
                       : quint8(bytes[at]);
}

TiffEntry TiffCursor::entryOf(const QByteArray &bytes, qsizetype at, qint64 position) const
{
    constexpr quint64 kMostCount = quint64(1) << 48; // so that no sum of sizes overflows
    const int fieldOffset = 4 + placeSize();
    TiffEntry entry{position,
                    quint16(numberAt(bytes, at, 2)),
                    quint16(numberAt(bytes, at + 2, 2)),
                    std::min(numberAt(bytes, at + 4, placeSize()), kMostCount),
                    position + fieldOffset,
                    0,
                    0};
    const size_t types = m_isBig ? kTiffTypeSizes.size() : size_t(kLastTiffType) + 1;
    if (entry.type < types)
        entry.statedSize = qint64(entry.count) * kTiffTypeSizes[entry.type];
    if (entry.statedSize > placeSize())
        entry.valueOffset = qint64(std::min(numberAt(bytes, at + fieldOffset, placeSize()), kMostCount));
    if (entry.valueOffset + entry.statedSize <= m_size)
        entry.valueSize = entry.statedSize;
    return entry;
}

std::optional<TiffDirectory> TiffCursor::directoryAt(quint64 offset, qint64 most) const
{
    if (offset < quint64(kHeaderSize) || offset >= quint64(m_size))
        return std::nullopt;
    const auto start = qint64(offset);
    const QByteArray stated = m_read(start, countSize());
    const quint64 count = numberAt(stated, 0, countSize());
    if (stated.size() < countSize() || count > quint64(most))
        return std::nullopt;
    const qint64 size = qint64(count) * entrySize();
    const QByteArray bytes = m_read(start + countSize(), size + placeSize());
    if (bytes.size() < size)
        return std::nullopt;
    TiffDirectory directory{start, countSize() + size + placeSize(), {}, numberAt(bytes, size, placeSize())};
    for (qint64 at = 0; at < size; at += entrySize())
        directory.entries.push_back(entryOf(bytes, at, start + countSize() + at));
    return directory;
}

QByteArray TiffCursor::value(const TiffEntry &entry, qint64 most) const
{
    if (entry.valueSize == 0 || entry.valueSize > most)
        return {};
    const QByteArray bytes = m_read(entry.valueOffset, entry.valueSize);
    return bytes.size() == entry.valueSize ? bytes : QByteArray();
}

std::vector<quint64> TiffCursor::numbers(const TiffEntry &entry, quint64 most) const
{
    constexpr quint16 kWholeTypes[] = {TIFF_BYTE, TIFF_SHORT, TIFF_LONG,   TIFF_SLONG, // places have this type, too
                                       TIFF_IFD,  TIFF_LONG8, TIFF_SLONG8, TIFF_IFD8};
    std::vector<quint64> result;
    if (entry.valueSize == 0 ||
        std::find(std::begin(kWholeTypes), std::end(kWholeTypes), entry.type) == std::end(kWholeTypes))
        return result;
    const int step = kTiffTypeSizes[entry.type];
    const QByteArray bytes = m_read(entry.valueOffset, qint64(std::min(entry.count, most)) * step);
    for (qsizetype at = 0; at + step <= bytes.size(); at += step)
        result.push_back(numberAt(bytes, at, step));
    return result;
}

std::optional<quint64> TiffCursor::number(const TiffEntry &entry) const
{
    const std::vector<quint64> all = numbers(entry, 1);
    return entry.count == 1 && !all.empty() ? std::optional(all.front()) : std::nullopt;
}

} // namespace hazelmark
