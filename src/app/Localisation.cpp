#include "Localisation.h"

#include "Bundle.h"
#include "PropertyList.h"
#include "UserSession.h"

#include <array>

namespace hazelmark {

namespace {

const QString kTableType = QStringLiteral("plist");

QString lookupTablePath(const QString &languageCode)
{
    return Bundle::mainBundle().pathForResource(QStringLiteral("BS_") + languageCode, kTableType);
}

} // namespace

void Localisation::loadLanguageDict()
{
    if (m_dictLanguageTokens)
        return;
    // "de-DE" gives "de", "zh-Hans-CN" gives "zh".
    m_languageCode = UserSession::current().preferredLanguages().value(0).section(QLatin1Char('-'), 0, 0);
    QString path = lookupTablePath(m_languageCode);
    if (path.isEmpty()) {
        m_languageCode = QStringLiteral("en");
        path = lookupTablePath(m_languageCode);
    }
    m_dictLanguageTokens = readPropertyList(path);
}

QString Localisation::replaceOccuranceOfSpecialCharacter(const QString &text)
{
    QString replaced = text;
    for (const char *placeholder : {"{0}", "{1}", "{2}", "{3}", "{4}"})
        replaced.replace(QLatin1String(placeholder), QLatin1String("%@"));
    return replaced;
}

QString Localisation::getLocalizedStringForKey(const QString &key)
{
    loadLanguageDict();
    const QVariant entry = m_dictLanguageTokens ? m_dictLanguageTokens->value(key) : QVariant();
    if (!entry.isValid())
        return QStringLiteral("(null)");
    return replaceOccuranceOfSpecialCharacter(entry.toString())
        .replace(QLatin1String("DONOT_TRANSLATE_INTEGER_VALUE"), QLatin1String("%d"))
        .replace(QLatin1String("DONOT_TRANSLATE_STRING_VALUE"), QLatin1String("%@"));
}

QString Localisation::getLocalizedString(const QString &key, const QString &)
{
    return getLocalizedStringForKey(key);
}

int Localisation::languageInForce()
{
    loadLanguageDict();
    constexpr std::array kCodes{"en", "fr", "de", "zh", "ja"};
    for (size_t tag = 0; tag < kCodes.size(); ++tag) {
        if (m_languageCode == QLatin1String(kCodes[tag]))
            return static_cast<int>(tag);
    }
    return 0;
}

void Localisation::loadLanguageSettings(int tag)
{
    constexpr std::array kNames{"EN", "FR", "DE", "CN", "JA"};
    const bool isKnown = tag >= 0 && tag < static_cast<int>(kNames.size());
    const QString name = QLatin1String("Hazelmark_") + QLatin1String(kNames[isKnown ? static_cast<size_t>(tag) : 0]);
    m_languageSettingsDict = readPropertyList(Bundle::mainBundle().pathForResource(name, kTableType));
}

} // namespace hazelmark
