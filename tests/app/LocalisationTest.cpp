#include "Localisation.h"
#include "Fakes.h"
#include "LinkTable.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

class LocalisationTest : public testing::Test
{
protected:
    void write(const QString &name, const QByteArray &entries)
    {
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
    }
    void writeTable(const char *code, const QByteArray &text)
    {
        write(QStringLiteral("BS_%1.plist").arg(QLatin1String(code)), "<key>SAVE</key><string>" + text + "</string>");
    }
    QString lookup(const char *key) { return m_texts.getLocalizedStringForKey(QString::fromLatin1(key)); }

    QTemporaryDir m_folder;
    Bundle m_bundle{m_folder.path()};
    ProcessWide<Bundle>::Replacement m_replaceBundle{m_bundle};
    FakeUserSession m_session;
    ProcessWide<UserSession>::Replacement m_replaceSession{m_session};
    Localisation m_texts;
};

struct LanguageCase
{
    const char *preferred;
    const char *table;
};

class LanguageChoiceTest : public LocalisationTest, public testing::WithParamInterface<LanguageCase>
{
};

} // namespace

TEST_P(LanguageChoiceTest, FollowsTheFirstPreferredLanguage)
{
    for (const char *code : {"en", "fr", "de", "zh"})
        writeTable(code, code);
    m_session.m_languages = {QString::fromLatin1(GetParam().preferred), QStringLiteral("fr")};
    EXPECT_EQ(lookup("SAVE"), QLatin1String(GetParam().table));
}

INSTANTIATE_TEST_SUITE_P(Languages, LanguageChoiceTest,
                         testing::Values(LanguageCase{"en", "en"}, LanguageCase{"fr-CA", "fr"},
                                         LanguageCase{"de-DE", "de"}, LanguageCase{"zh-Hans-CN", "zh"},
                                         LanguageCase{"it-IT", "en"}, LanguageCase{"", "en"},
                                         LanguageCase{"../x", "en"}));

TEST_F(LocalisationTest, PlaceholdersBecomeSpecifiers)
{
    write(QStringLiteral("BS_en.plist"),
          "<key>A</key><string>{1} of {0} and {4}, not {5}; 100 %</string>"
          "<key>B</key><string>DONOT_TRANSLATE_INTEGER_VALUE x DONOT_TRANSLATE_STRING_VALUE</string>"
          "<key>C</key><string></string>");
    EXPECT_EQ(lookup("A"), QStringLiteral("%@ of %@ and %@, not {5}; 100 %"));
    EXPECT_EQ(lookup("B"), QStringLiteral("%d x %@"));
    EXPECT_EQ(lookup("C"), QString());
    EXPECT_EQ(lookup("D"), QStringLiteral("(null)"));
    EXPECT_EQ(m_texts.getLocalizedString(QStringLiteral("B"), QStringLiteral("old")), lookup("B"));
}

TEST_F(LocalisationTest, ATableThatIsMissingOrBrokenIsTriedAgain)
{
    EXPECT_EQ(lookup("SAVE"), QStringLiteral("(null)"));
    write(QStringLiteral("BS_en.plist"), "<key>SAVE</key>");
    EXPECT_EQ(lookup("SAVE"), QStringLiteral("(null)"));
    EXPECT_FALSE(m_texts.dictLanguageTokens());
    writeTable("en", "Save");
    EXPECT_EQ(lookup("SAVE"), QStringLiteral("Save"));
    writeTable("en", "changed");
    EXPECT_EQ(lookup("SAVE"), QStringLiteral("Save")) << "the table is kept for the life of the process";
}

TEST_F(LocalisationTest, TheLanguageMenuLoadsATableThatNoLookupReads)
{
    writeTable("en", "Save");
    for (const char *name : {"EN", "FR", "DE", "JA"}) {
        write(QStringLiteral("Hazelmark_%1.plist").arg(QLatin1String(name)),
              QByteArray("<key>SAVE</key><string>") + name + "</string>");
    }
    const auto picked = [&] {
        return m_texts.languageSettingsDict() ? m_texts.languageSettingsDict()->value(QStringLiteral("SAVE")).toString()
                                              : QStringLiteral("absent");
    };
    EXPECT_EQ(picked(), QStringLiteral("absent"));
    const std::pair<int, const char *> tags[] = {{0, "EN"}, {1, "FR"},     {2, "DE"}, {4, "JA"},
                                                 {9, "EN"}, {3, "absent"}, {-1, "EN"}};
    for (const auto &[tag, table] : tags) {
        m_texts.loadLanguageSettings(tag);
        EXPECT_EQ(picked(), QLatin1String(table)) << tag;
        EXPECT_EQ(lookup("SAVE"), QStringLiteral("Save"));
    }
}

TEST_F(LocalisationTest, LinksLeadToPagesAndToFilesOfTheProgramOnly)
{
    const auto entry = [](const char *tag, const char *address) {
        return QByteArray("<key>") + tag + "</key><dict><key>name</key><string>N" + tag +
               "</string><key>address</key><string>" + address + "</string></dict>";
    };
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("manual/index.html")));
    write(QStringLiteral("Links.plist"),
          entry("0", "manual/index.html") + entry("1", "") + entry("2", "appstream:org.example.App") +
              entry("3", "https://example.org/x") + entry("4", "file:///etc/passwd") + entry("5", "manual/none.html") +
              entry("6", "../outside") + entry("8", "https://example.org"));
    const LinkTable links;
    EXPECT_EQ(links.address(0), QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("manual/index.html"))));
    EXPECT_EQ(links.address(2), QUrl(QStringLiteral("appstream:org.example.App")));
    EXPECT_EQ(links.address(3), QUrl(QStringLiteral("https://example.org/x")));
    EXPECT_EQ(links.name(3), QStringLiteral("N3"));
    for (const int tag : {1, 4, 5, 6, 7, 8, -1})
        EXPECT_TRUE(links.address(tag).isEmpty()) << tag;
}
