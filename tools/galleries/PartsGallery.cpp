// Draws every part of the main screen into a PNG file, for looking at:
// LANG=de_DE.UTF-8 QT_QPA_PLATFORM=offscreen screen_parts_gallery FOLDER
#include "AlertSheet.h"
#include "AppDelegate.h"
#include "ColorWell.h"
#include "FloatSlider.h"
#include "SavePanel.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "Theme.h"
#include "TipsWindow.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>

using namespace hazelmark;

namespace {

class Gallery
{
public:
    explicit Gallery(const QString &folder)
        : m_folder(folder)
    {
        QDir().mkpath(folder);
    }

    void drawAll()
    {
        settings();
        summaryBar();
        alert();
        tips();
        savePanel();
    }

private:
    void save(QWidget &widget, const QString &name)
    {
        widget.show();
        QCoreApplication::processEvents();
        widget.grab().save(QStringLiteral("%1/%2.png").arg(m_folder, name));
    }

    void settings()
    {
        SettingsPanel panel(m_application);
        panel.resize(SettingsPanel::kPanelWidthPoints, 720);
        panel.slider(Setting::Vignette)->setValue(0.12);
        panel.setAllTextsForSliders();
        save(panel, QStringLiteral("settings"));
        panel.setUnfolded(true);
        panel.showTool(true);
        panel.resize(SettingsPanel::kPanelWidthPoints, 1350);
        save(panel, QStringLiteral("settings-unfolded"));
        panel.setEnabled(false);
        panel.resize(SettingsPanel::kPanelWidthPoints, 560);
        save(panel, QStringLiteral("settings-disabled"));
    }

    void summaryBar()
    {
        SummaryBar bar(m_application);
        bar.resize(1050, SummaryBar::kHeightPoints);
        bar.setupBottomSummaryInfo(QCoreApplication::applicationFilePath());
        bar.showExported(QStringLiteral("/home/ada/Pictures/A walk in the park – blurred.jpeg"));
        save(bar, QStringLiteral("summary"));
    }

    void alert()
    {
        const auto lookup = [this](const char *key) {
            return m_application.getLocalizedStringForKey(QString::fromLatin1(key));
        };
        AlertSheet sheet(lookup("ERROR_CANT_SHARE_IMAGE"), QStringLiteral("\n ") + lookup("ERROR_PHOTO_NOT_AVAILABLE"),
                         lookup("OK"));
        save(sheet, QStringLiteral("alert"));
    }

    void tips()
    {
        QWidget mainWindow;
        TipsWindow window(m_application, &mainWindow);
        window.addDemoWindow(QSize(1220, 700));
        for (int page = 0; page < 4; ++page) {
            window.pageButtonsAction(page);
            save(window, QStringLiteral("tip-%1").arg(page + 1));
        }
    }

    void savePanel()
    {
        const ExportFormats formats = ExportFormats::forSource(QStringLiteral("jpg"));
        SavePanel panel(m_application, {m_folder + QStringLiteral("/photo.jpg"), QSize(6000, 4000)}, formats, m_folder);
        save(panel, QStringLiteral("save"));
        panel.selectFormat(4);
        panel.nameField()->setText(QStringLiteral("alert.png"));
        panel.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
        save(panel, QStringLiteral("save-replace"));
    }

    QString m_folder;
    AppDelegate m_application{nullptr}; // never launched: the texts are all that is asked for
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    theme::apply(application);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 2) {
        qCritical("usage: screen_parts_gallery FOLDER");
        return 2;
    }
    Gallery(arguments[1]).drawAll();
    return 0;
}
