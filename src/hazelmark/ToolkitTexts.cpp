#include "ToolkitTexts.h"

#include "Bundle.h"
#include "Localisation.h"
#include "UserSession.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <cstring>

namespace hazelmark {

namespace {

/// Where the toolkit's own word is a wrong one: in Chinese the column of file sizes is headed "volume".
class BetterWords : public QTranslator
{
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        const bool isSize = std::strcmp(context, "QFileSystemModel") == 0 && std::strcmp(sourceText, "Size") == 0;
        return isSize ? m_texts.getLocalizedStringForKey(QStringLiteral("FILE_SIZE")) : QString();
    }

private:
    mutable Localisation m_texts; // loads its table when it is asked first
};

} // namespace

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
    QCoreApplication::installTranslator(new BetterWords(&application)); // the last one is asked first
}

} // namespace hazelmark
