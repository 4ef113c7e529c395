#include "IptcRecords.h"

#include "EmbeddedBlocks.h"
#include "IptcNames.h"
#include "PictureSearch.h"
#include "TiffBytes.h"

#include <QtEndian>

namespace hazelmark {

namespace {

constexpr qsizetype kHeadSize = 5;
constexpr int kLongestPlain = 0x7fff; ///< of a value; longer ones have a length of their own length

/// Reads the data set at `at`, which is moved behind it; false when there is no whole one.
bool take(const QByteArray &block, qsizetype &at, IptcRecord &record)
{
    if (at + kHeadSize > block.size() || block[at] != kIptcRecordMarker)
        return false;
    const char *head = block.constData() + at;
    qint64 size = qFromBigEndian<quint16>(head + 3);
    qsizetype start = at + kHeadSize;
    if (size > kLongestPlain) {
        const qsizetype lengthSize = size & kLongestPlain;
        if (lengthSize > 4 || start + lengthSize > block.size())
            return false;
        size = 0;
        for (qsizetype i = 0; i < lengthSize; ++i)
            size = size << 8 | quint8(block[start + i]);
        start += lengthSize;
    }
    if (size > block.size() - start)
        return false;
    record = {quint8(head[1]), quint8(head[2]), QByteArrayView(block).sliced(start, size)};
    at = start + size;
    return true;
}

/// 2:200 to 2:202 are a preview, the records 7 to 9 carry the object itself.
bool isCarried(const IptcRecord &record)
{
    constexpr qsizetype kMostUnknown = 4096;
    constexpr quint8 kFirstObjectRecord = 7;
    constexpr quint8 kLastObjectRecord = 9;
    const bool isObject = record.record >= kFirstObjectRecord && record.record <= kLastObjectRecord;
    const bool isApplication = record.record == IptcRecord::kApplication;
    const bool isPreview = isApplication && record.dataSet >= 200 && record.dataSet <= 202;
    const bool isKnown = isApplication && iptcName(record.dataSet);
    return !isObject && !isPreview && (isKnown || record.value.size() <= kMostUnknown) && !holdsPicture(record.value);
}

void append(QByteArray &block, const IptcRecord &record)
{
    block += kIptcRecordMarker;
    block += char(record.record);
    block += char(record.dataSet);
    if (record.value.size() <= kLongestPlain)
        block += tiffBytes(quint16(record.value.size()), true);
    else
        block += tiffBytes(quint16(0x8000 | sizeof(quint32)), true) + tiffBytes(quint32(record.value.size()), true);
    block.append(record.value);
}

} // namespace

std::vector<IptcRecord> iptcRecords(const QByteArray &block)
{
    constexpr size_t kMost = 1'000'000;
    std::vector<IptcRecord> records;
    IptcRecord record{};
    qsizetype at = 0;
    while (records.size() < kMost && take(block, at, record)) {
        records.push_back(record);
        while (at < block.size() && block[at] == '\0')
            ++at; // some writers pad
    }
    return records;
}

QByteArray carriedIptc(const QByteArray &block, LeftOut &leftOut)
{
    QByteArray carried;
    const std::vector<IptcRecord> records = iptcRecords(block);
    const char *understood = block.constData();
    for (const IptcRecord &record : records) {
        understood = record.value.data() + record.value.size();
        if (isCarried(record))
            append(carried, record);
        else
            leftOut.add(QStringLiteral("IPTC data set %1:%2").arg(record.record).arg(record.dataSet),
                        record.value.size());
    }
    const qsizetype rest = block.constData() + block.size() - understood;
    if (QByteArrayView(understood, rest).toByteArray().count('\0') < rest)
        leftOut.add(QStringLiteral("IPTC block behind its data sets"), rest);
    return carried;
}

} // namespace hazelmark
