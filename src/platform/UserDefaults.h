#pragma once

#include <QSettings>
#include <QString>

namespace hazelmark {

/// The few values that outlive the process, by key. An absent or unreadable value reads as 0, an empty string, false.
class UserDefaults
{
public:
    /// The user's own file: `$XDG_CONFIG_HOME/hazelmark/hazelmark.conf`.
    UserDefaults();
    explicit UserDefaults(const QString &filePath);

    static UserDefaults &standardUserDefaults();

    int integer(const QString &key) const;
    QString string(const QString &key) const;
    bool boolean(const QString &key) const;

    void setInteger(const QString &key, int value);
    void setString(const QString &key, const QString &value);
    void setBoolean(const QString &key, bool value);

    /// Writes what was set to the file now; without it that happens soon, at the latest when the process ends.
    void synchronize();

private:
    QSettings m_settings;
};

} // namespace hazelmark
