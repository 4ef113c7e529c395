#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace hazelmark {

/// The texts of the interface, by key, from the string table of the system's preferred language. The table is chosen
/// once, on first use: the language menu loads another one, which no lookup reads.
class Localisation
{
public:
    /// The lookup. Placeholders come back as specifiers: "{0}" to "{4}" and "DONOT_TRANSLATE_STRING_VALUE" as "%@",
    /// "DONOT_TRANSLATE_INTEGER_VALUE" as "%d". A key that the table does not have gives "(null)".
    QString getLocalizedStringForKey(const QString &key);
    /// The same; `text`, what the control shows so far, is for the reader of the call.
    QString getLocalizedString(const QString &key, const QString &text);
    /// "{0}" to "{4}" as "%@".
    static QString replaceOccuranceOfSpecialCharacter(const QString &text);

    /// Loads the lookup's table unless it is there. A failure leaves it absent: the next lookup tries again.
    void loadLanguageDict();
    const std::optional<QVariantMap> &dictLanguageTokens() const { return m_dictLanguageTokens; }

    /// The tag in the language menu of the language that lookups give.
    int languageInForce();

    /// Loads the table that the language menu's item with `tag` (0 to 4) names; any other tag stands for English.
    void loadLanguageSettings(int tag);
    /// The table that was picked in the language menu; absent before that, and when its file is missing.
    const std::optional<QVariantMap> &languageSettingsDict() const { return m_languageSettingsDict; }

private:
    std::optional<QVariantMap> m_dictLanguageTokens;
    QString m_languageCode = QStringLiteral("en"); ///< of that table
    std::optional<QVariantMap> m_languageSettingsDict;
};

} // namespace hazelmark
