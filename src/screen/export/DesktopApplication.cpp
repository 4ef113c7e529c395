#include "DesktopApplication.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QLocale>
#include <QSet>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

namespace hazelmark {

namespace {

constexpr qint64 kMaxEntrySize = 1024 * 1024; // bytes; real entries have a few thousand

/// The keys of the group "[Desktop Entry]", as written.
QHash<QString, QString> entryKeys(const QString &path)
{
    QHash<QString, QString> keys;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return keys;
    bool inGroup = false;
    const QList<QByteArray> lines = file.read(kMaxEntrySize).split('\n');
    for (const QByteArray &raw : lines) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            inGroup = line == QLatin1String("[Desktop Entry]");
        const qsizetype sign = line.indexOf(QLatin1Char('='));
        if (inGroup && sign > 0 && !line.startsWith(QLatin1Char('#')))
            keys.insert(line.left(sign).trimmed(), line.mid(sign + 1).trimmed());
    }
    return keys;
}

/// A value of type string with its escapes resolved.
QString unescaped(const QString &value)
{
    QString text;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != QLatin1Char('\\') || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        const QChar code = value[++i];
        text += code == QLatin1Char('s')   ? QLatin1Char(' ')
                : code == QLatin1Char('n') ? QLatin1Char('\n')
                : code == QLatin1Char('t') ? QLatin1Char('\t')
                : code == QLatin1Char('r') ? QLatin1Char('\r')
                                           : code;
    }
    return text;
}

bool isTrue(const QHash<QString, QString> &keys, const char *key)
{
    return keys.value(QLatin1String(key)) == QLatin1String("true");
}

bool isInstalled(const QString &program)
{
    return program.startsWith(QLatin1Char('/')) ? QFileInfo(program).isExecutable()
                                                : !QStandardPaths::findExecutable(program).isEmpty();
}

/// The words of a command line: blanks part them, double quotes keep them together, and a backslash in quotes takes
/// the next character as it is. Nothing for a quote without an end.
std::optional<QStringList> words(const QString &exec)
{
    QStringList found;
    QString word;
    bool inWord = false;
    bool quoted = false;
    for (qsizetype i = 0; i < exec.size(); ++i) {
        const QChar c = exec[i];
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
            inWord = true;
        } else if (quoted && c == QLatin1Char('\\') && i + 1 < exec.size()) {
            word += exec[++i];
        } else if (!quoted && c.isSpace()) {
            if (inWord)
                found << std::exchange(word, {});
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord)
        found << word;
    return quoted ? std::nullopt : std::optional(found);
}

} // namespace

std::optional<DesktopApplication> DesktopApplication::fromEntry(const QString &path, const QStringList &languages)
{
    const QHash<QString, QString> keys = entryKeys(path);
    if (keys.value(QStringLiteral("Type")) != QLatin1String("Application") || isTrue(keys, "NoDisplay") ||
        isTrue(keys, "Hidden") || isTrue(keys, "Terminal"))
        return std::nullopt;
    const QString tryExec = unescaped(keys.value(QStringLiteral("TryExec")));
    if (!tryExec.isEmpty() && !isInstalled(tryExec))
        return std::nullopt;

    DesktopApplication application;
    application.m_entryPath = path;
    application.m_name = unescaped(keys.value(QStringLiteral("Name")));
    for (const QString &language : languages) {
        const QString name = unescaped(keys.value(QStringLiteral("Name[%1]").arg(language)));
        if (!name.isEmpty()) {
            application.m_name = name;
            break;
        }
    }
    application.m_icon = unescaped(keys.value(QStringLiteral("Icon")));
    application.m_exec = unescaped(keys.value(QStringLiteral("Exec")));
    application.m_mimeTypes =
        unescaped(keys.value(QStringLiteral("MimeType"))).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    const std::optional<QStringList> command = words(application.m_exec);
    if (application.m_name.isEmpty() || !command || command->isEmpty() || !isInstalled(command->first()))
        return std::nullopt;
    return application;
}

QStringList DesktopApplication::command(const QString &path) const
{
    const QStringList exec = words(m_exec).value_or(QStringList());
    QStringList command;
    bool takesFile = false;
    for (const QString &word : exec) {
        if (word == QLatin1String("%i")) {
            if (!m_icon.isEmpty())
                command << QStringLiteral("--icon") << m_icon;
            continue;
        }
        QString expanded;
        for (qsizetype i = 0; i < word.size(); ++i) {
            if (word[i] != QLatin1Char('%') || i + 1 == word.size()) {
                expanded += word[i];
                continue;
            }
            switch (word[++i].toLatin1()) {
            case 'f':
            case 'F':
                expanded += path;
                takesFile = true;
                break;
            case 'u':
            case 'U':
                expanded += QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
                takesFile = true;
                break;
            case 'c':
                expanded += m_name;
                break;
            case 'k':
                expanded += m_entryPath;
                break;
            case '%':
                expanded += QLatin1Char('%');
                break;
            default: // codes of old: they stand for nothing
                break;
            }
        }
        if (!expanded.isEmpty() || !word.startsWith(QLatin1Char('%')))
            command << expanded;
    }
    if (!takesFile && !command.isEmpty())
        command << path;
    return command;
}

QList<DesktopApplication> DesktopApplication::forType(const QString &mimeType)
{
    return forType(mimeType, QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation));
}

QList<DesktopApplication> DesktopApplication::forType(const QString &mimeType, const QStringList &entryFolders)
{
    const QString locale = QLocale().name();
    const QStringList languages{locale, locale.section(QLatin1Char('_'), 0, 0)};
    const QString own = QGuiApplication::desktopFileName() + QStringLiteral(".desktop");
    QSet<QString> seen;
    QList<DesktopApplication> found;
    for (const QString &folder : entryFolders) {
        QDirIterator entries(folder, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = entries.next();
            const QString id = path.mid(folder.size() + 1).replace(QLatin1Char('/'), QLatin1Char('-'));
            if (seen.contains(id) || id == own)
                continue;
            seen.insert(id); // whatever it says: it hides the entries of this id that come later
            const std::optional<DesktopApplication> application = fromEntry(path, languages);
            if (application && application->opens(mimeType))
                found << *application;
        }
    }
    std::sort(found.begin(), found.end(), [](const DesktopApplication &a, const DesktopApplication &b) {
        return QString::localeAwareCompare(a.name(), b.name()) < 0;
    });
    return found;
}

} // namespace hazelmark
