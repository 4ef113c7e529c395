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

QFileDialog *makePanel(QWidget &window, ApplicationDelegate &application, QFileDialog::AcceptMode mode,
                       const QString &folder)
{
    const bool opens = mode == QFileDialog::AcceptOpen;
    const auto text = [&](const char *key) {
        return application.getLocalizedStringForKey(QLatin1String(key)).remove(QChar(0x2026)).trimmed();
    };
    auto *panel = new QFileDialog(&window, text(opens ? "OPEN_PAINTING" : "SAVE_PAINTING_AS"), folder);
    panel->setObjectName(QStringLiteral("paintingPanel"));
    panel->setOption(QFileDialog::DontConfirmOverwrite); // asked here, about the path that will be written
    panel->setNameFilter(text("PAINTING_FILES") + QStringLiteral(" (*.") + kExtension + QLatin1Char(')'));
    panel->setFileMode(opens ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    panel->setAcceptMode(mode); // which makes other buttons
    panel->setLabelText(QFileDialog::Accept, text(opens ? "OPEN" : "SAVE"));
    panel->setLabelText(QFileDialog::Reject, text("CANCEL"));
    if (panel->layout()) // the toolkit's own dialog, where the desktop has none
        dressFilePanel(*panel, application);
    return panel;
}

} // namespace

void PaintingPanels::open(QWidget &window, ApplicationDelegate &application, const QString &folder, Chosen chosen)
{
    QFileDialog *panel = makePanel(window, application, QFileDialog::AcceptOpen, folder);
    QObject::connect(panel, &QFileDialog::fileSelected, panel, std::move(chosen));
    SheetQueue::forWindow(window).present(panel);
}

void PaintingPanels::save(QWidget &window, ApplicationDelegate &application, const QString &path, Chosen chosen)
{
    QFileDialog *panel = makePanel(window, application, QFileDialog::AcceptSave, pathWithoutLastComponent(path));
    panel->selectFile(path);
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
