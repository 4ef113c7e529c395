#include "Screen.h"
#include "UserDefaults.h"
#include "UserSession.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace hazelmark;

TEST(UserSessionTest, KnowsLanguageNameAndScreen)
{
    for (const auto &[locale, identifier] : {std::pair("en", "en"),
                                             {"de_DE", "de-DE"},
                                             {"de_DE.UTF-8@euro", "de-DE"},
                                             {"sr@latin", "sr"},
                                             {"zh-Hans-CN", "zh-Hans-CN"},
                                             {"C", "en"},
                                             {"C.UTF-8", "en"},
                                             {"POSIX", "en"},
                                             {"", "en"}})
        EXPECT_EQ(UserSession::languageIdentifier(QLatin1String(locale)).toStdString(), identifier);
    ASSERT_FALSE(UserSession::current().preferredLanguages().isEmpty());
    EXPECT_FALSE(UserSession::current().preferredLanguages().first().contains(QLatin1Char('_')));
    EXPECT_FALSE(UserSession::current().loginName().isEmpty());
    EXPECT_FALSE(Screen::mainScreen().visibleFrame().isEmpty());
    EXPECT_GE(Screen::mainScreen().backingScale(), 1.0);
}

TEST(UserDefaultsTest, KeepsValuesFromOneProcessToTheNextAndReadsNoneFromABrokenFile)
{
    const QString count = QStringLiteral("appOpenedCount"), version = QStringLiteral("appVersion"),
                  flag = QStringLiteral("notShowPromotionWindow");
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("defaults.conf")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\x00\xff[[[appOpenedCount\n=@Invalid(", 30));
    file.close();
    for (const bool isSet : {false, true}) {
        UserDefaults defaults(file.fileName());
        EXPECT_EQ(defaults.integer(count), isSet ? 6 : 0);
        EXPECT_EQ(defaults.string(version), isSet ? QStringLiteral("1.0, \"β\" = 1") : QString());
        EXPECT_EQ(defaults.boolean(flag), isSet);
        defaults.setInteger(count, 6);
        defaults.setString(version, QStringLiteral("1.0, \"β\" = 1"));
        defaults.setBoolean(flag, true);
        defaults.synchronize();
    }
}
