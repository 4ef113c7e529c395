#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace hazelmark {

/// Opens files and links in the programs that the desktop has for them. Nothing here waits: the caller hears of the
/// outcome later, on the main thread, through an optional completion that is called exactly once.
class Workspace
{
public:
    /// `opened` is false when there was nothing to open, or when the desktop knows no program for it.
    using Completion = std::function<void(bool opened)>;

    /// `opener`: the program that is handed the address as its one argument.
    explicit Workspace(const QString &opener = QStringLiteral("xdg-open"));
    virtual ~Workspace();

    static Workspace &sharedWorkspace();

    /// Opens the file at `path` in its default viewer. An empty path opens nothing.
    void openFile(const QString &path, Completion completion = {});
    /// An empty or invalid address opens nothing.
    virtual void openUrl(const QUrl &url, Completion completion = {});
    /// Starts a program that lives on when this one ends. It has `opened` when it ended well, or still runs after a
    /// few seconds.
    virtual void launch(const QString &program, const QStringList &arguments, Completion completion = {});

private:
    QString m_opener;
};

} // namespace hazelmark
