#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace hazelmark {

class ApplicationDelegate;

/// The panels in which a person chooses the file of a painting: sheets of `window`, in their turn. `chosen` is called
/// unless the person cancels.
class PaintingPanels
{
public:
    using Chosen = std::function<void(const QString &path)>;

    /// Starts at `folder`.
    static void open(QWidget &window, ApplicationDelegate &application, const QString &folder, Chosen chosen);
    /// Proposes `path`; asks before a file is replaced. What is chosen has the extension of paintings.
    static void save(QWidget &window, ApplicationDelegate &application, const QString &path, Chosen chosen);
};

} // namespace hazelmark
