#pragma once

#include <QString>

#include <functional>

class QObject;
class QWidget;

namespace hazelmark {

class ApplicationDelegate;

/// The panel in which a person chooses the photo to open: one file, of the readable types. A sheet of `window`, in its
/// turn; nothing waits for it.
class OpenPanel
{
public:
    using Chosen = std::function<void(const QString &path)>;
    using Finished = std::function<void()>;

    /// Starts in `folder`, or where pictures are kept when that is empty. `chosen` is called, while `context` lives,
    /// unless the person cancels, and `finished` then in either case. A panel that is up already stays the only one.
    static void show(QWidget &window, ApplicationDelegate &application, const QString &folder, QObject *context,
                     Chosen chosen, Finished finished);
    /// Whether the panel of `window` is up, or waits for its turn.
    static bool isOpen(const QWidget &window);
    /// Only the person's own trash, and only for a login name without capitals: the name is not lowered as the path is.
    static bool isInTrash(const QString &path);
};

} // namespace hazelmark
