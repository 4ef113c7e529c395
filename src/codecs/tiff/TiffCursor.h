#pragma once

#include "SourceFile.h"
#include "TiffBytes.h"

#include <functional>
#include <optional>
#include <vector>

namespace hazelmark {

/// An entry of a directory of a TIFF structure.
struct TiffEntry
{
    qint64 position; ///< of the entry itself
    quint16 tag;
    quint16 type;
    quint64 count;
    qint64 valueOffset; ///< inside the entry when the value is so small that it fits in there
    qint64 statedSize;  ///< bytes of the value by its type and count; 0 for a type that does not exist
    qint64 valueSize;   ///< the same, but 0 when the value does not lie inside the structure
};

struct TiffDirectory
{
    qint64 offset;
    qint64 size; ///< bytes, the place of the next one included
    std::vector<TiffEntry> entries;
    quint64 next; ///< offset of the directory that follows; 0 for none

    const TiffEntry *find(quint16 tag) const;
};

/// Reads the directories of a TIFF structure, be it a file or a block of metadata, with offsets of 32 or of 64 bits.
/// Values are read when they are asked for: a hostile directory may refer to the same large one thousands of times.
class TiffCursor
{
public:
    /// `count` bytes from `offset`, or fewer where the structure ends.
    using Read = std::function<QByteArray(qint64 offset, qint64 count)>;

    static constexpr qint64 kMostEntries = 65535;

    /// Nothing when the bytes do not begin with a TIFF header. The source and the bytes must outlive the cursor.
    static std::optional<TiffCursor> of(Read read, qint64 size);
    static std::optional<TiffCursor> of(const SourceFile &source);
    static std::optional<TiffCursor> of(const QByteArray &bytes);

    bool isBigEndian() const { return m_isBigEndian; }
    /// Whether offsets have 64 bits.
    bool isBig() const { return m_isBig; }
    qint64 size() const { return m_size; }

    quint64 firstDirectoryOffset() const { return m_first; }
    /// Nothing when no directory with all its entries lies there, or one of more entries than `most`.
    std::optional<TiffDirectory> directoryAt(quint64 offset, qint64 most = kMostEntries) const;

    /// Empty when it is larger than `most`, or does not lie inside the structure.
    QByteArray value(const TiffEntry &entry, qint64 most) const;
    /// An entry's whole numbers (bytes, shorts, longs and places), the first `most` of them; none of another kind.
    std::vector<quint64> numbers(const TiffEntry &entry, quint64 most) const;
    /// An entry's single whole number.
    std::optional<quint64> number(const TiffEntry &entry) const;

private:
    TiffCursor(Read read, qint64 size, const QByteArray &header);
    TiffEntry entryOf(const QByteArray &bytes, qsizetype at, qint64 position) const;
    /// Whole numbers of 2, 4 or 8 bytes.
    quint64 numberAt(const QByteArray &bytes, qsizetype at, int size) const;
    int placeSize() const { return m_isBig ? 8 : 4; }
    int countSize() const { return m_isBig ? 8 : 2; }
    int entrySize() const { return 4 + 2 * placeSize(); }

    Read m_read;
    qint64 m_size;
    bool m_isBigEndian;
    bool m_isBig;
    quint64 m_first;
};

} // namespace hazelmark
