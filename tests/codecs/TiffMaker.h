#pragma once

#include "TiffBytes.h"

namespace hazelmark {

/// Puts a TIFF structure together, with 32-bit or 64-bit offsets. What leads to something is added behind it.
class TiffMaker
{
public:
    enum Type : quint16 { kByte = 1, kAscii, kShort, kLong, kRational, kUndefined = 7, kDirectory = 18 };

    explicit TiffMaker(bool isBigEndian = false, bool isLarge = false)
        : m_isBigEndian(isBigEndian)
        , m_isLarge(isLarge)
        , m_bytes(isBigEndian ? "MM" : "II")
    {
        m_bytes += isLarge ? number<quint16>(43) + number<quint16>(8) + number<quint16>(0) : number<quint16>(42);
        m_bytes += place(0);
    }

    template <typename Number>
    QByteArray number(Number value) const
    {
        return tiffBytes(value, m_isBigEndian);
    }
    /// An offset or a count.
    QByteArray place(quint64 value) const { return m_isLarge ? number(value) : number(quint32(value)); }

    quint64 add(const QByteArray &bytes)
    {
        const auto at = quint64(m_bytes.size());
        m_bytes += evenlyLong(bytes);
        return at;
    }

    void set(TiffEntries &entries, quint16 tag, Type type, const QByteArray &value)
    {
        set(entries, tag, type, quint64(value.size() / kTiffTypeSizes[type]), value);
    }
    /// With a count that the value may not have.
    void set(TiffEntries &entries, quint16 tag, Type type, quint64 count, const QByteArray &value)
    {
        const qsizetype room = place(0).size();
        const QByteArray field = value.size() > room ? place(add(value)) : value.leftJustified(room, '\0');
        entries[tag] = number(tag) + number(quint16(type)) + place(count) + field;
    }

    /// Single numbers.
    void setNumbers(TiffEntries &entries, std::initializer_list<std::pair<quint16, quint32>> numbers)
    {
        for (const auto &[tag, value] : numbers)
            set(entries, tag, kLong, number(value));
    }

    /// Where it is; `next`: the place of the one that follows.
    quint64 directory(const TiffEntries &entries, quint64 next = 0)
    {
        QByteArray bytes = m_isLarge ? number(quint64(entries.size())) : number(quint16(entries.size()));
        for (const auto &[tag, entry] : entries)
            bytes += entry;
        return add(bytes + place(next));
    }

    /// The whole, whose first directory is at `first`.
    QByteArray startingAt(quint64 first)
    {
        const qsizetype size = place(0).size();
        return m_bytes.replace(size, size, place(first));
    }

private:
    const bool m_isBigEndian;
    const bool m_isLarge;
    QByteArray m_bytes;
};

} // namespace hazelmark
