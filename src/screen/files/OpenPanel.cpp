#include "OpenPanel.h"

#include "ApplicationDelegate.h"
#include "FilePanelLook.h"
#include "FormatString.h"
#include "ReadableTypes.h"
#include "SheetQueue.h"
#include "UserSession.h"

#include <QFileDialog>

namespace hazelmark {

namespace {
const QString kName = QStringLiteral("openPanel");
}

bool OpenPanel::isInTrash(const QString &path)
{
    const QString trash = formatString(QStringLiteral("/users/%@/.trash/"), {UserSession::current().loginName()});
    return path.toLower().startsWith(trash);
}

bool OpenPanel::isOpen(const QWidget &window)
{
    return window.findChild<QFileDialog *>(kName);
}

void OpenPanel::show(QWidget &window, ApplicationDelegate &application, const QString &folder, QObject *context,
                     Chosen chosen, Finished finished)
{
    if (isOpen(window))
        return;
    const auto text = [&](const char *key) { return application.getLocalizedStringForKey(QLatin1String(key)); };
    auto *panel = new QFileDialog(&window, text("ADD_IMAGE"), folder.isEmpty() ? picturesFolder() : folder);
    panel->setObjectName(kName);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setOption(QFileDialog::HideNameFilterDetails);
    panel->setNameFilter(text("IMAGE_FILES") + QStringLiteral(" (") + ReadableTypes::fileNamePatterns() +
                         QLatin1Char(')'));
    panel->setLabelText(QFileDialog::Accept, text("OPEN_IMAGE"));
    panel->setLabelText(QFileDialog::Reject, text("CANCEL"));
    if (panel->layout()) // the toolkit's own dialog, where the desktop has none
        dressFilePanel(*panel, application);
    QObject::connect(panel, &QDialog::accepted, context, [panel, chosen = std::move(chosen)] {
        const QStringList files = panel->selectedFiles();
        if (!files.isEmpty())
            chosen(files.last());
    });
    QObject::connect(panel, &QDialog::finished, context, [panel, finished = std::move(finished)] {
        panel->setObjectName(QString()); // it will be gone soon, and is not the one that is open any more
        finished();
    });
    SheetQueue::forWindow(window).present(panel);
}

} // namespace hazelmark
