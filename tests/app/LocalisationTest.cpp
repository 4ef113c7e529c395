// Looking texts up, the tables and links that the program is delivered with, and both against the sources.
#include "Localisation.h"
#include "Fakes.h"
#include "LinkTable.h"
#include "PropertyList.h"
#include "RefusalKey.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace hazelmark;
using namespace Qt::StringLiterals;

namespace {

class LocalisationTest : public testing::Test
{
protected:
    void write(const QString &name, const QList<std::pair<QString, QString>> &texts, QString entries = {})
    {
        for (const auto &[key, text] : texts)
            entries += u"<key>%1</key><string>%2</string>"_s.arg(key, text);
        QFile file(m_folder.filePath(name + u".plist"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(u"<plist><dict>%1</dict></plist>"_s.arg(entries).toUtf8());
    }

    QTemporaryDir m_folder;
    Bundle m_bundle{m_folder.path()};
    ProcessWide<Bundle>::Replacement m_replaceBundle{m_bundle};
    FakeUserSession m_session;
    ProcessWide<UserSession>::Replacement m_replaceSession{m_session};
};

QVariantMap table(const QString &name)
{
    return readPropertyList(Bundle::mainBundle().pathForResource(name, u"plist"_s)).value_or(QVariantMap());
}

QStringList placeholders(const QString &text)
{
    static const QRegularExpression kPlaceholder(u"\\{[0-4]\\}|DONOT_TRANSLATE_[A-Z]+_VALUE"_s);
    QStringList found;
    for (auto match = kPlaceholder.globalMatch(text); match.hasNext();)
        found.append(match.next().captured());
    found.sort();
    return found;
}

/// The keys that the sources look up: the literals in lookups, and in the two modules with texts every literal that is
/// written as keys of several words are.
QSet<QString> keysOfTheSources()
{
    static const QRegularExpression kLookup(
        u"(?:getLocalizedString(?:ForKey)?|lookup)\\(\\s*(?:QStringLiteral\\(|u)?\"([A-Z0-9_]+)\""_s);
    static const QRegularExpression kKey(u"\"([A-Z][A-Z0-9]*(?:_[A-Z0-9]+)+)\""_s);
    static const QRegularExpression kNoKey(u"^(HAZELMARK|XDG|DBUS|QT|WAYLAND|DONOT_TRANSLATE)_|^WINDOW_OBJECT$"_s);
    QSet<QString> keys;
    const QString root = QStringLiteral(HAZELMARK_SOURCE_DIR "/src/");
    QDirIterator files(root, {u"*.cpp"_s, u"*.h"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const bool hasTexts = file.fileName().contains(u"/src/app/"_s) || file.fileName().contains(u"/src/screen/"_s);
        for (const QRegularExpression &expression : {kLookup, hasTexts ? kKey : kLookup}) {
            for (auto match = expression.globalMatch(text); match.hasNext();)
                keys.insert(match.next().captured(1));
        }
    }
    return keys.removeIf([](const QString &key) { return key.contains(kNoKey); }), keys;
}

} // namespace

TEST_F(LocalisationTest, TextsAreOfTheFirstPreferredLanguageWithSpecifiersForPlaceholders)
{
    for (const char *code : {"en", "fr"})
        write(u"BS_%1"_s.arg(QLatin1String(code)), {{u"SAVE"_s, QLatin1String(code)}});
    for (const auto &[preferred, code] :
         {std::pair{"en", "en"}, {"fr-CA", "fr"}, {"it-IT", "en"}, {"", "en"}, {"../x", "en"}}) {
        m_session.m_languages = {QLatin1String(preferred), u"fr"_s};
        Localisation texts;
        EXPECT_EQ(texts.getLocalizedStringForKey(u"SAVE"_s), QLatin1String(code)) << preferred;
    }
    write(u"BS_en"_s, {{u"A"_s, u"{1} of {0}, {2}, {3} and {4}, not {5}; 100 %"_s},
                       {u"B"_s, u"DONOT_TRANSLATE_INTEGER_VALUE x DONOT_TRANSLATE_STRING_VALUE"_s}});
    for (const auto &[key, format] :
         {std::pair{"A", "%@ of %@, %@, %@ and %@, not {5}; 100 %"}, {"B", "%d x %@"}, {"C", "(null)"}})
        EXPECT_EQ(Localisation().getLocalizedString(QLatin1String(key), u"old"_s), QLatin1String(format));
}

TEST_F(LocalisationTest, LinksLeadToPagesAndToFilesOfTheProgramOnly)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"manual/index.html"_s));
    const std::pair<QString, QUrl> links[]{
        {u"manual/index.html"_s, QUrl::fromLocalFile(m_folder.filePath(u"manual/index.html"_s))},
        {u"https://example.org/x"_s, QUrl(u"https://example.org/x"_s)},
        {u"appstream:org.example.App"_s, QUrl(u"appstream:org.example.App"_s)},
        {u"file:///etc/passwd"_s, {}},
        {u"manual/none.html"_s, {}},
        {u"../outside"_s, {}},
        {u"/etc/passwd"_s, {}},
        {u""_s, {}},
        {u"https://beyond.the.last.tag"_s, {}}};
    QString entries;
    for (const auto &[address, url] : links)
        entries += u"<key>%1</key><dict><key>address</key><string>%2</string></dict>"_s.arg(
            QString::number(entries.count(u"<dict>"_s)), address);
    write(u"Links"_s, {}, entries);
    const LinkTable table;
    for (int tag = 0; tag < int(std::size(links)); ++tag)
        EXPECT_EQ(table.address(tag), links[tag].second) << tag;
}

TEST(StringTablesTest, HoldWhatTheSourcesLookUpInEveryLanguage)
{
    const QVariantMap english = table(u"BS_en"_s);
    const QSet<QString> keys = keysOfTheSources();
    ASSERT_GT(keys.size(), 30) << "the sources were not found";
    for (const QString &key : keys)
        EXPECT_TRUE(english.contains(key)) << qPrintable(key);
    for (int reason = 0; reason <= static_cast<int>(Failure::Reason::EncodeFailed); ++reason)
        EXPECT_EQ(placeholders(english.value(refusalKey(static_cast<Failure::Reason>(reason))).toString()),
                  QStringList(u"{0}"_s))
            << reason;
    for (const char *name : {"BS_en", "BS_fr", "BS_de", "BS_zh", "BS_ja", "Hazelmark_EN", "Hazelmark_FR",
                             "Hazelmark_DE", "Hazelmark_CN", "Hazelmark_JA"}) {
        const QVariantMap texts = table(QLatin1String(name));
        EXPECT_EQ(texts.keys(), english.keys()) << name;
        int same = 0;
        for (auto entry = texts.begin(); entry != texts.end(); ++entry) {
            const QString text = entry->toString(), original = english.value(entry.key()).toString();
            same += text == original;
            EXPECT_EQ(placeholders(text), placeholders(original)) << name << qPrintable(entry.key());
            // A lookup hands the text on as a format: nothing but the placeholders may look like a specifier.
            EXPECT_FALSE(text.trimmed().isEmpty() || text.contains("%@"_L1) || text.contains("%d"_L1))
                << name << qPrintable(entry.key());
        }
        const bool isEnglish = QLatin1String(name).endsWith("EN"_L1, Qt::CaseInsensitive);
        EXPECT_TRUE(isEnglish || same < 10) << name; // "Format", "Photo", "OK" are words of several languages
    }
    EXPECT_TRUE(QFile::exists(LinkTable().address(LinkTable::kHomePageTag).toLocalFile()));
}
