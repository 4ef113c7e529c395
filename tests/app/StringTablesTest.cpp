// The string tables that the program is delivered with, against each other and against the sources.
#include "Bundle.h"
#include "LinkTable.h"
#include "PropertyList.h"
#include "RefusalKey.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

using namespace hazelmark;

namespace {

QVariantMap table(const QString &name)
{
    return readPropertyList(Bundle::mainBundle().pathForResource(name, QStringLiteral("plist")))
        .value_or(QVariantMap());
}

QStringList placeholders(const QString &text)
{
    static const QRegularExpression kPlaceholder(QStringLiteral("\\{[0-4]\\}|DONOT_TRANSLATE_[A-Z]+_VALUE"));
    QStringList found;
    for (auto match = kPlaceholder.globalMatch(text); match.hasNext();)
        found.append(match.next().captured());
    found.sort();
    return found;
}

/// The keys that the sources look up: the literals in lookups, and every literal in the two modules with texts that
/// is written as keys of several words are.
QMap<QString, QString> keysOfTheSources()
{
    static const QRegularExpression kLookup(
        QStringLiteral("(?:getLocalizedString(?:ForKey)?|lookup)\\(\\s*(?:QStringLiteral\\(|u)?\"([A-Z0-9_]+)\""));
    static const QRegularExpression kKey(QStringLiteral("\"([A-Z][A-Z0-9]*(?:_[A-Z0-9]+)+)\""));
    static const QSet<QString> kNoKeys{QStringLiteral("WINDOW_OBJECT"), QStringLiteral("DONOT_TRANSLATE_INTEGER_VALUE"),
                                       QStringLiteral("DONOT_TRANSLATE_STRING_VALUE")};
    QMap<QString, QString> keys; // to the file that uses it
    const QString root = QStringLiteral(HAZELMARK_SOURCE_DIR "/src/");
    QDirIterator files(root, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const bool hasTexts = file.fileName().startsWith(root + QLatin1String("app/")) ||
                              file.fileName().startsWith(root + QLatin1String("screen/"));
        const auto collect = [&](const QRegularExpression &expression) {
            for (auto match = expression.globalMatch(text); match.hasNext();)
                keys.insert(match.next().captured(1), file.fileName());
        };
        collect(kLookup);
        if (hasTexts)
            collect(kKey);
    }
    // Names of environment variables are written the same way.
    static const QRegularExpression kEnvironment(QStringLiteral("^(XDG|DBUS|QT|WAYLAND)_"));
    keys.removeIf(
        [](const auto &entry) { return kNoKeys.contains(entry.key()) || entry.key().contains(kEnvironment); });
    return keys;
}

class StringTableTest : public testing::TestWithParam<const char *>
{
protected:
    const QVariantMap m_english = table(QStringLiteral("BS_en"));
    const QVariantMap m_table = table(QString::fromLatin1(GetParam()));
};

} // namespace

TEST_P(StringTableTest, HasTheKeysAndPlaceholdersOfTheEnglishOne)
{
    ASSERT_FALSE(m_table.isEmpty());
    EXPECT_EQ(m_table.keys(), m_english.keys());
    for (auto entry = m_table.begin(); entry != m_table.end(); ++entry) {
        EXPECT_FALSE(entry->toString().trimmed().isEmpty()) << qPrintable(entry.key());
        EXPECT_EQ(placeholders(entry->toString()), placeholders(m_english.value(entry.key()).toString()))
            << qPrintable(entry.key());
        // A lookup hands the text on as a format: nothing but the placeholders may look like a specifier.
        EXPECT_FALSE(entry->toString().contains(QLatin1String("%@")) || entry->toString().contains(QLatin1String("%d")))
            << qPrintable(entry.key());
    }
}

TEST_P(StringTableTest, HasEveryKeyThatTheSourcesLookUp)
{
    const QMap<QString, QString> keys = keysOfTheSources();
    ASSERT_GT(keys.size(), 30) << "the sources were not found";
    for (auto key = keys.begin(); key != keys.end(); ++key)
        EXPECT_TRUE(m_table.contains(key.key())) << qPrintable(key.key()) << ", used in " << qPrintable(key.value());
}

TEST_P(StringTableTest, SaysWhatHappenedToWhichFileForEveryFailure)
{
    for (int reason = 0; reason <= static_cast<int>(Failure::Reason::EncodeFailed); ++reason) {
        const QString sentence = m_table.value(refusalKey(static_cast<Failure::Reason>(reason))).toString();
        EXPECT_EQ(placeholders(sentence), QStringList(QStringLiteral("{0}"))) << reason;
    }
}

INSTANTIATE_TEST_SUITE_P(Tables, StringTableTest,
                         testing::Values("BS_en", "BS_fr", "BS_de", "BS_zh", "BS_ja", "Hazelmark_EN", "Hazelmark_FR",
                                         "Hazelmark_DE", "Hazelmark_CN", "Hazelmark_JA"));

TEST(StringTablesTest, AreTranslated)
{
    const QVariantMap english = table(QStringLiteral("BS_en"));
    for (const char *name : {"BS_fr", "BS_de", "BS_zh", "BS_ja"}) {
        const QVariantMap other = table(QString::fromLatin1(name));
        int same = 0;
        for (auto entry = english.begin(); entry != english.end(); ++entry)
            same += other.value(entry.key()) == *entry;
        EXPECT_LT(same, 10) << name; // "Format", "Photo", "OK", "Version {0}" are words of several languages
    }
}

TEST(StringTablesTest, TheLinksThatAreDeliveredLeadSomewhere)
{
    const LinkTable links;
    const QUrl manual = links.address(LinkTable::kHomePageTag);
    ASSERT_TRUE(manual.isLocalFile());
    EXPECT_TRUE(QFile::exists(manual.toLocalFile()));
    EXPECT_EQ(links.address(LinkTable::kStorePageTag).toString(), QStringLiteral("appstream:org.hazelmark.Hazelmark"));
    for (int tag = 0; tag <= LinkTable::kLastTag; ++tag) {
        const bool isOwnPage = tag == LinkTable::kHomePageTag || tag == LinkTable::kStorePageTag;
        EXPECT_TRUE(links.address(tag).isEmpty() || isOwnPage || !links.name(tag).isEmpty()) << tag;
    }
}
