#pragma once

#include "TiffCursor.h"

namespace hazelmark {

/// A block of metadata in the structure of a TIFF file, with offsets of 32 bits. It is read and changed in place, so
/// that every offset in it stays true, also those inside values that nobody here understands.
class TiffBlock
{
public:
    using Entry = TiffEntry;
    using Directory = TiffDirectory;

    static constexpr qsizetype kHeaderSize = 8;
    static constexpr qsizetype kEntrySize = 12;
    static constexpr qsizetype kInlineSize = 4; ///< a value of up to so many bytes lies in its entry

    static bool isTiffStructure(const QByteArray &bytes);

    /// Nothing when the bytes do not begin with a TIFF header (of the form with 32-bit offsets).
    static std::optional<TiffBlock> of(QByteArray bytes);

    const QByteArray &bytes() const { return m_bytes; }
    bool isBigEndian() const { return m_bytes.startsWith('M'); }

    quint32 firstDirectoryOffset() const { return quint32(cursor().firstDirectoryOffset()); }
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
    explicit TiffBlock(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }
    TiffCursor cursor() const { return *TiffCursor::of(m_bytes); }

    QByteArray m_bytes;
};

} // namespace hazelmark
