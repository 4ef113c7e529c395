#include "LeftOut.h"

#include <QStringList>

namespace hazelmark {

void LeftOut::add(const QString &kind, qint64 bytes, int count)
{
    constexpr size_t kMostKinds = 32;
    const bool isListed = m_totals.count(kind) > 0 || m_totals.size() < kMostKinds;
    Total &total = m_totals[isListed ? kind : QStringLiteral("other metadata")];
    total.count += count;
    total.bytes += bytes;
}

void LeftOut::add(const LeftOut &others)
{
    for (const auto &[kind, total] : others.m_totals)
        add(kind, total.bytes, total.count);
}

QString LeftOut::text() const
{
    QStringList parts;
    for (const auto &[kind, total] : m_totals) {
        const QString times = total.count > 1 ? QStringLiteral("%1 times, ").arg(total.count) : QString();
        parts += QStringLiteral("%1 (%2%3 bytes)").arg(kind, times).arg(total.bytes);
    }
    return parts.join(QStringLiteral(", "));
}

} // namespace hazelmark
