#pragma once

#include "WorkQueue.h"

#include <QTemporaryDir>

#include <functional>
#include <optional>

namespace hazelmark {

/// The photo on the clipboard as a file: one that was copied in a file manager, or else a picture that was copied in
/// another program, which is written as "Clipboard.png", or what else it is, into a folder that is removed at the end.
/// Main thread only.
class ClipboardPhoto
{
public:
    /// `done` is called with the path, from the event loop where a picture has to be written first; with an empty one
    /// when there is no photo.
    void asFile(std::function<void(const QString &path)> done);

private:
    std::optional<QTemporaryDir> m_folder;
    int m_count = 0;
    WorkQueue m_writer{1}; ///< last, so that it is over before the folder goes
};

} // namespace hazelmark
