#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace hazelmark {

/// Reads the XML property list at `path`, whose root is a dictionary: dictionaries become QVariantMap, arrays
/// QVariantList, strings QString, integers qint64, reals double, true and false bool. Nothing comes back for a file
/// that is missing, larger than 4 MiB or broken anywhere; dates and data blocks count as broken.
std::optional<QVariantMap> readPropertyList(const QString &path);

} // namespace hazelmark
