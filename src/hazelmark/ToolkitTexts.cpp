#include "ToolkitTexts.h"

#include "Bundle.h"
#include "UserSession.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace hazelmark {

void installToolkitTexts(QCoreApplication &application)
{
    QString language = UserSession::current().preferredLanguages().value(0);
    const QString table = QStringLiteral("BS_") + language.section(QLatin1Char('-'), 0, 0);
    if (Bundle::mainBundle().pathForResource(table, QStringLiteral("plist")).isEmpty())
        language = QStringLiteral("en");
    auto *translator = new QTranslator(&application);
    if (translator->load(QLocale(language), QStringLiteral("qtbase"), QStringLiteral("_"),
                         QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

} // namespace hazelmark
