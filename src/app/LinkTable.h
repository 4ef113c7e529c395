#pragma once

#include <QString>
#include <QUrl>
#include <QVariantMap>

namespace hazelmark {

/// The links of the Help menu by tag, from the resource "Links.plist".
class LinkTable
{
public:
    static constexpr int kHomePageTag = 0;  ///< the manual
    static constexpr int kStorePageTag = 2; ///< this program's own page in the software centre
    static constexpr int kLastTag = 7;

    LinkTable();

    /// Empty when the tag has no address, or one that is neither a web address, an `appstream:` address, nor a file of
    /// the resources.
    QUrl address(int tag) const;
    /// Of the program whose page it is; empty for this one's own pages.
    QString name(int tag) const;

private:
    QString entry(int tag, const QString &key) const;

    QVariantMap m_entries;
};

} // namespace hazelmark
