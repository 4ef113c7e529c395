#include "UserSession.h"

#include <gtest/gtest.h>

using namespace hazelmark;

TEST(UserSessionTest, KnowsLanguageAndName)
{
    for (const auto &[locale, identifier] : {std::pair("de_DE.UTF-8@euro", "de-DE"),
                                             {"sr@latin", "sr"},
                                             {"zh-Hans-CN", "zh-Hans-CN"},
                                             {"C.UTF-8", "en"},
                                             {"POSIX", "en"},
                                             {"", "en"}})
        EXPECT_EQ(UserSession::languageIdentifier(QLatin1String(locale)).toStdString(), identifier);
    EXPECT_FALSE(UserSession::current().preferredLanguages().isEmpty() || UserSession::current().loginName().isEmpty());
}
