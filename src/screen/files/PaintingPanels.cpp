#include "PaintingPanels.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "FilePanelLook.h"
#include "FormatString.h"
#include "PathParts.h"
#include "SheetQueue.h"

#include <QFileDialog>
#include <QFileInfo>

#include <utility>

namespace hazelmark {

namespace {

const QString kExtension = QStringLiteral("json");

QFileDialog *makePanel(QWidget &window, ApplicationDelegate &application, const char *titleKey, const QString &folder)
{
    const auto text = [&](const char *key) { return application.getLocalizedStringForKey(QLatin1String(key)); };
    auto *panel = new QFileDialog(&window, text(titleKey).remove(QChar(0x2026)).trimmed(), folder);
    panel->setObjectName(QStringLiteral("paintingPanel"));
    panel->setOption(QFileDialog::DontConfirmOverwrite); // asked here, about the path that will be written
    panel->setNameFilter(text("PAINTING_FILES") + QStringLiteral(" (*.") + kExtension + QLatin1Char(')'));
    panel->setLabelText(QFileDialog::Reject, text("CANCEL"));
    return panel;
}

} // namespace

void PaintingPanels::open(QWidget &window, ApplicationDelegate &application, const QString &folder, Chosen chosen)
{
    QFileDialog *panel = makePanel(window, application, "OPEN_PAINTING", folder);
    panel->setFileMode(QFileDialog::ExistingFile);
    if (panel->layout()) // the toolkit's own dialog, where the desktop has none
        dressFilePanel(*panel, application);
    QObject::connect(panel, &QFileDialog::fileSelected, panel, std::move(chosen));
    SheetQueue::forWindow(window).present(panel);
}

void PaintingPanels::save(QWidget &window, ApplicationDelegate &application, const QString &path, Chosen chosen)
{
    QFileDialog *panel = makePanel(window, application, "SAVE_PAINTING_AS", pathWithoutLastComponent(path));
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setFileMode(QFileDialog::AnyFile);
    panel->setDefaultSuffix(kExtension);
    panel->setLabelText(QFileDialog::Accept, application.getLocalizedStringForKey(QStringLiteral("SAVE")));
    panel->selectFile(path);
    if (panel->layout())
        dressFilePanel(*panel, application);
    const auto text = [&application](const char *key) {
        return application.getLocalizedStringForKey(QLatin1String(key));
    };
    QObject::connect(panel, &QFileDialog::fileSelected, &window, [&window, text, chosen](QString file) {
        if (pathExtension(file).toLower() != kExtension)
            file += QLatin1Char('.') + kExtension;
        if (!QFileInfo::exists(file))
            return chosen(file);
        auto *question = new AlertSheet(formatString(text("REPLACE_TITLE"), {lastPathComponent(file)}),
                                        text("REPLACE_MSG"), text("CANCEL"), text("REPLACE"));
        QObject::connect(question, &AlertSheet::finished, &window, [chosen, file](int answer) {
            if (answer == AlertSheet::AlternateReturn)
                chosen(file);
        });
        SheetQueue::forWindow(window).present(question);
    });
    SheetQueue::forWindow(window).present(panel);
}

} // namespace hazelmark
