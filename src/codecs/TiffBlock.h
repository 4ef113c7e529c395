#pragma once

#include "TiffBytes.h"

#include <optional>
#include <vector>

namespace hazelmark {

/// A block of metadata in the structure of a TIFF file: a header and directories of tags, whose values are found by
/// their offsets from the header. It is read and changed in place, so that every offset in it stays true, also those
/// inside values that nobody here understands.
class TiffBlock
{
public:
    /// A directory's entry of 12 bytes.
    struct Entry
    {
        qsizetype position; ///< of the entry itself in the block
        quint16 tag;
        quint16 type;
        quint32 count;
        qsizetype valueOffset; ///< of the value in the block: inside the entry when it takes no more than 4 bytes
        qint64 statedSize;     ///< bytes of the value by its type and count; 0 for a type that does not exist
        qsizetype valueSize;   ///< the same, but 0 when the value does not lie inside the block
    };

    struct Directory
    {
        qsizetype offset;
        std::vector<Entry> entries;
        quint32 next; ///< offset of the directory that follows; 0 for none

        const Entry *find(quint16 tag) const;
        qsizetype size() const { return 2 + qsizetype(entries.size()) * kEntrySize + 4; }
        qsizetype nextPosition() const { return offset + size() - 4; }
    };

    static constexpr qsizetype kHeaderSize = 8;
    static constexpr qsizetype kEntrySize = 12;
    static constexpr qsizetype kInlineSize = 4; ///< a value of up to so many bytes lies in its entry

    static bool isTiffStructure(const QByteArray &bytes);

    /// Nothing when the bytes do not begin with a TIFF header (of the form with 32-bit offsets).
    static std::optional<TiffBlock> of(QByteArray bytes);

    const QByteArray &bytes() const { return m_bytes; }
    bool isBigEndian() const { return m_isBigEndian; }

    quint32 firstDirectoryOffset() const { return number32(4); }
    /// Nothing when no whole directory lies there.
    std::optional<Directory> directoryAt(quint32 offset) const;

    /// An entry's single whole number (a byte, short or long); nothing for values of another kind.
    std::optional<quint32> number(const Entry &entry) const;
    /// An entry's whole numbers.
    std::vector<quint32> numbers(const Entry &entry) const;

    /// Makes the entry one of a single long.
    void setNumber(const Entry &entry, quint32 value);
    /// Lets the directory have these of its entries alone, and nothing follow it.
    void keepEntries(const Directory &directory, const std::vector<Entry> &kept);
    void wipe(qsizetype from, qsizetype to);

private:
    explicit TiffBlock(QByteArray bytes, bool isBigEndian);

    quint16 number16(qsizetype position) const { return tiffNumber<quint16>(m_bytes, position, m_isBigEndian); }
    quint32 number32(qsizetype position) const { return tiffNumber<quint32>(m_bytes, position, m_isBigEndian); }
    void put16(qsizetype position, quint16 value);
    void put32(qsizetype position, quint32 value);

    QByteArray m_bytes;
    bool m_isBigEndian;
};

} // namespace hazelmark
