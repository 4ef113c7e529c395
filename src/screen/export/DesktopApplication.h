#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace hazelmark {

/// A program of the desktop as its desktop entry describes it.
class DesktopApplication
{
public:
    /// The programs that can open a file of the type `mimeType` and that the desktop shows to people, by name, without
    /// this one. Looks through the desktop entries of all data folders; an entry of the user's own takes the place of
    /// the system's entry with the same id. Reads files: for a worker thread.
    static QList<DesktopApplication> forType(const QString &mimeType);
    static QList<DesktopApplication> forType(const QString &mimeType, const QStringList &entryFolders);

    /// The entry in the file at `path`; nothing unless it is a program that can be started and shown. `languages`: the
    /// locales whose name of the program is wanted, "de_DE", "de", the best first.
    static std::optional<DesktopApplication> fromEntry(const QString &path, const QStringList &languages);

    const QString &name() const { return m_name; }
    const QString &icon() const { return m_icon; } ///< the name of a theme icon, or a path
    bool opens(const QString &mimeType) const { return m_mimeTypes.contains(mimeType); }

    /// The program and its arguments for opening the file at `path`. Empty when the entry's command line is broken.
    QStringList command(const QString &path) const;

private:
    QString m_name;
    QString m_icon;
    QString m_exec;
    QString m_entryPath;
    QStringList m_mimeTypes;
};

} // namespace hazelmark
