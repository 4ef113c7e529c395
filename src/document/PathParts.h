#pragma once

#include <QString>

namespace hazelmark {

/// The part after the last slash; slashes at the end do not count. "/" for the root, empty for an empty path.
QString lastPathComponent(const QString &path);

/// The path without its last component: "/" for a file of the root, empty for a bare name.
QString pathWithoutLastComponent(const QString &path);

/// What follows the last dot of the last component, as written. Empty for a hidden file's name without another dot
/// (".profile"), unlike QFileInfo::suffix().
QString pathExtension(const QString &path);

/// The last component without its extension and the dot before it.
QString nameWithoutExtension(const QString &path);

} // namespace hazelmark
