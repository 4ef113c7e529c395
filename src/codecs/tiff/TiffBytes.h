#pragma once

#include <QByteArray>
#include <QtEndian>

#include <array>
#include <cstdint>
#include <map>

namespace hazelmark {

/// A whole number of a TIFF structure, in the structure's byte order.
template <typename Number>
Number tiffNumber(const QByteArray &bytes, qsizetype position, bool isBigEndian)
{
    const char *at = bytes.constData() + position;
    return isBigEndian ? qFromBigEndian<Number>(at) : qFromLittleEndian<Number>(at);
}

template <typename Number>
QByteArray tiffBytes(Number value, bool isBigEndian)
{
    QByteArray bytes(sizeof value, Qt::Uninitialized);
    isBigEndian ? qToBigEndian(value, bytes.data()) : qToLittleEndian(value, bytes.data());
    return bytes;
}

/// Bytes of one value of each type; 0 for types that do not exist. The last three only exist with 64-bit offsets.
inline constexpr std::array<uint8_t, 19> kTiffTypeSizes = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
/// The last type that exists with 32-bit offsets, too.
inline constexpr uint16_t kLastTiffType = 13;

/// What follows the bytes begins at an even place, as directories and values have to.
inline QByteArray evenlyLong(const QByteArray &bytes)
{
    return bytes.size() % 2 == 0 ? bytes : bytes + '\0';
}

/// A directory's entries by their tags, each as its 12 bytes.
using TiffEntries = std::map<uint16_t, QByteArray>;

/// A directory of these entries that no other follows. There may be 65535 of them.
inline QByteArray tiffDirectory(const TiffEntries &entries, bool isBigEndian)
{
    QByteArray directory = tiffBytes(uint16_t(entries.size()), isBigEndian);
    for (const auto &[tag, entry] : entries)
        directory += entry;
    return directory + tiffBytes(uint32_t(0), isBigEndian);
}

} // namespace hazelmark
