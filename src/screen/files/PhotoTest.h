#pragma once

#include <QString>

namespace hazelmark {

/// Whether the file at `path` passes for a photo that can be opened: a file with the extension of a readable type, or
/// one whose first bytes say what its name does not. Cheap enough for a drag that is still under way; opening it looks
/// closer.
bool isReadablePhotoFile(const QString &path);

} // namespace hazelmark
