#include "LinkTable.h"

#include "Bundle.h"
#include "PropertyList.h"

namespace hazelmark {

LinkTable::LinkTable()
    : m_entries(readPropertyList(Bundle::mainBundle().pathForResource(QStringLiteral("Links"), QStringLiteral("plist")))
                    .value_or(QVariantMap()))
{
}

QString LinkTable::entry(int tag, const QString &key) const
{
    if (tag < 0 || tag > kLastTag)
        return {};
    return m_entries.value(QString::number(tag)).toMap().value(key).toString();
}

QUrl LinkTable::address(int tag) const
{
    const QString address = entry(tag, QStringLiteral("address"));
    if (address.isEmpty())
        return {};
    const QUrl url(address);
    if (url.isRelative()) {
        const QString path = Bundle::mainBundle().pathForResource(address, QString());
        return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
    }
    for (const char *scheme : {"http", "https", "appstream"}) {
        if (url.scheme() == QLatin1String(scheme))
            return url;
    }
    return {};
}

QString LinkTable::name(int tag) const
{
    return entry(tag, QStringLiteral("name"));
}

} // namespace hazelmark
