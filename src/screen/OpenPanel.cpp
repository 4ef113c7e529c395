#include "OpenPanel.h"

#include "ApplicationDelegate.h"
#include "ReadableTypes.h"
#include "SheetQueue.h"

#include <QFileDialog>
#include <QStandardPaths>

namespace hazelmark {

void OpenPanel::show(QWidget &window, ApplicationDelegate &application, const QString &folder, QObject *context,
                     Chosen chosen)
{
    const QString name = QStringLiteral("openPanel");
    if (window.findChild<QFileDialog *>(name))
        return;
    auto *panel =
        new QFileDialog(&window, application.getLocalizedStringForKey(QStringLiteral("ADD_IMAGE")),
                        folder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation) : folder);
    panel->setObjectName(name);
    panel->setFileMode(QFileDialog::ExistingFile);
    panel->setOption(QFileDialog::HideNameFilterDetails);
    panel->setNameFilter(application.getLocalizedStringForKey(QStringLiteral("IMAGE_FILES")) + QStringLiteral(" (") +
                         ReadableTypes::fileNamePatterns() + QLatin1Char(')'));
    QObject::connect(panel, &QDialog::accepted, context, [panel, chosen = std::move(chosen)] {
        const QStringList files = panel->selectedFiles();
        if (!files.isEmpty())
            chosen(files.last());
    });
    SheetQueue::forWindow(window).present(panel);
}

} // namespace hazelmark
