#pragma once

#include <QString>
#include <QStringList>

namespace hazelmark {

/// Who sits at the machine: the languages they prefer and the name they are logged in under.
class UserSession
{
public:
    virtual ~UserSession() = default;
    static const UserSession &current();

    /// Identifiers such as "en", "de-DE", "zh-Hans-CN", the most wanted first; never empty.
    virtual QStringList preferredLanguages() const;
    virtual QString loginName() const;

    /// "de_DE.UTF-8@euro" as "de-DE". The locales without a language, "C" and "POSIX", count as "en".
    static QString languageIdentifier(const QString &localeName);
};

} // namespace hazelmark
