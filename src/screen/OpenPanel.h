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

    /// Starts in `folder`, or where pictures are kept when that is empty. `chosen` is called, while `context` lives,
    /// unless the person cancels. A panel that is up already stays the only one.
    static void show(QWidget &window, ApplicationDelegate &application, const QString &folder, QObject *context,
                     Chosen chosen);
};

} // namespace hazelmark
