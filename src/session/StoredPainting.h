#pragma once

#include <QDateTime>
#include <QString>

namespace hazelmark {

/// A painting of the open photo that was kept in the person's state folder.
struct StoredPainting
{
    QString path;
    QDateTime when;               ///< it was painted on last
    bool photoHasChanged = false; ///< it is known by the photo's path alone: the content is another since

    bool operator==(const StoredPainting &) const = default;
};

} // namespace hazelmark
