#include "UserSession.h"
#include "Screen.h"

#include <gtest/gtest.h>

using namespace hazelmark;

struct LocaleCase
{
    const char *localeName;
    const char *identifier;
};

using LanguageIdentifierTest = testing::TestWithParam<LocaleCase>;

TEST_P(LanguageIdentifierTest, IsWrittenWithHyphens)
{
    EXPECT_EQ(UserSession::languageIdentifier(QString::fromLatin1(GetParam().localeName)).toStdString(),
              GetParam().identifier);
}

INSTANTIATE_TEST_SUITE_P(Locales, LanguageIdentifierTest,
                         testing::Values(LocaleCase{"en", "en"}, LocaleCase{"de_DE", "de-DE"},
                                         LocaleCase{"de_DE.UTF-8@euro", "de-DE"}, LocaleCase{"sr@latin", "sr"},
                                         LocaleCase{"zh-Hans-CN", "zh-Hans-CN"}, LocaleCase{"C", "en"},
                                         LocaleCase{"C.UTF-8", "en"}, LocaleCase{"POSIX", "en"}, LocaleCase{"", "en"}));

TEST(UserSessionTest, KnowsLanguageNameAndScreen)
{
    ASSERT_FALSE(UserSession::current().preferredLanguages().isEmpty());
    EXPECT_FALSE(UserSession::current().preferredLanguages().first().contains(QLatin1Char('_')));
    EXPECT_FALSE(UserSession::current().loginName().isEmpty());
    EXPECT_FALSE(Screen::mainScreen().visibleFrame().isEmpty());
    EXPECT_GE(Screen::mainScreen().backingScale(), 1.0);
}
