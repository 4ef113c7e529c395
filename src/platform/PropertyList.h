#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace hazelmark {

/// Reads the XML property list at `path`, whose root is a dictionary: dictionaries become QVariantMap, arrays
/// QVariantList, strings QString. Nothing comes back for a file that is missing, larger than 4 MiB or broken anywhere;
/// values of other types count as broken.
std::optional<QVariantMap> readPropertyList(const QString &path);

} // namespace hazelmark
