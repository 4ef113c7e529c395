#include "UserDefaults.h"

#include "ProcessWide.h"

namespace hazelmark {

UserDefaults::UserDefaults()
    : m_settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("hazelmark"),
                 QStringLiteral("hazelmark"))
{
}

UserDefaults::UserDefaults(const QString &filePath)
    : m_settings(filePath, QSettings::IniFormat)
{
}

UserDefaults &UserDefaults::standardUserDefaults()
{
    return ProcessWide<UserDefaults>::instance();
}

int UserDefaults::integer(const QString &key) const
{
    return m_settings.value(key).toInt();
}

QString UserDefaults::string(const QString &key) const
{
    return m_settings.value(key).toString();
}

bool UserDefaults::boolean(const QString &key) const
{
    return m_settings.value(key).toBool();
}

void UserDefaults::setInteger(const QString &key, int value)
{
    m_settings.setValue(key, value);
}

void UserDefaults::setString(const QString &key, const QString &value)
{
    m_settings.setValue(key, value);
}

void UserDefaults::setBoolean(const QString &key, bool value)
{
    m_settings.setValue(key, value);
}

void UserDefaults::synchronize()
{
    m_settings.sync();
}

} // namespace hazelmark
