#include "UserSession.h"

#include "ProcessWide.h"

#include <QFile>
#include <QLocale>

#include <pwd.h>
#include <unistd.h>

namespace hazelmark {

const UserSession &UserSession::current()
{
    return ProcessWide<UserSession>::instance();
}

QString UserSession::languageIdentifier(const QString &localeName)
{
    const QString name = localeName.section(QLatin1Char('.'), 0, 0).section(QLatin1Char('@'), 0, 0);
    if (name.isEmpty() || name == QLatin1String("C") || name == QLatin1String("POSIX"))
        return QStringLiteral("en");
    return QString(name).replace(QLatin1Char('_'), QLatin1Char('-'));
}

QStringList UserSession::preferredLanguages() const
{
    QStringList languages;
    for (const QString &name : QLocale::system().uiLanguages())
        languages.append(languageIdentifier(name));
    if (languages.isEmpty())
        languages.append(QStringLiteral("en"));
    return languages;
}

QString UserSession::loginName() const
{
    const passwd *entry = ::getpwuid(::getuid());
    return entry ? QFile::decodeName(entry->pw_name) : qEnvironmentVariable("USER");
}

} // namespace hazelmark
