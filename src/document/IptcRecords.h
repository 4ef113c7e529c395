#pragma once

#include "LeftOut.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace hazelmark {

/// A data set of an IIM block. The value is part of the block's bytes, which must stay.
struct IptcRecord
{
    quint8 record;
    quint8 dataSet;
    QByteArrayView value;

    static constexpr quint8 kApplication = 2; ///< the record that describes the picture
};

/// The data sets of an IIM block up to the first bytes that are none. (The millions that a hostile block may have are
/// not all taken.)
std::vector<IptcRecord> iptcRecords(const QByteArray &block);

/// An IIM block made of those data sets that are harmless: not the previews, the records that carry the object itself,
/// what holds a picture by its content, and more than 4 KB that nobody here knows.
QByteArray carriedIptc(const QByteArray &block, LeftOut &leftOut);

} // namespace hazelmark
