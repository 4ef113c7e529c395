// The main screen's side of saving and sharing.
#include "MainScreenVC.h"

#include "BarProgressIndicator.h"
#include "ColorWell.h"
#include "IMGButton.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "TitlebarWindow.h"

namespace hazelmark {

void MainScreenVC::makeExportFlow()
{
    m_exportFlow = std::make_unique<ExportFlow>(*this, m_application, *m_window, *m_view->btnExport, m_exportWork);
    connect(m_view, &QObject::destroyed, this, [this] { m_exportFlow.reset(); });
    ExportFlow *flow = m_exportFlow.get();
    connect(flow, &ExportFlow::exportStarted, this, [this](const QString &path) {
        m_view->progressBar->show();
        if (!path.isEmpty())
            m_view->vwBottom->showExporting(path);
    });
    connect(flow, &ExportFlow::progressChanged, m_view->progressBar, &BarProgressIndicator::setValue);
    connect(flow, &ExportFlow::exportEnded, this, [this](const QString &writtenPath) {
        m_view->progressBar->hide();
        if (writtenPath.isEmpty())
            return m_view->vwBottom->clearExport();
        m_writtenEdits = edits();
        m_view->vwBottom->showExported(writtenPath);
        updateUnsavedMark();
    });
    connect(&flow->sharePicker(), &SharePicker::shared, m_view->vwBottom, &SummaryBar::showMessage);
    connect(flow, &ExportFlow::openChanged, this, &MainScreenVC::updateStripButtons);
    connect(&flow->sharePicker(), &SharePicker::closed, this, &MainScreenVC::updateStripButtons);
}

void MainScreenVC::btnExportDenoisedImageTapped()
{
    if (m_exportFlow)
        m_exportFlow->btnExportDenoisedImageTapped();
    updateStripButtons();
}

void MainScreenVC::btnSocialShareImageTapped()
{
    if (m_exportFlow)
        m_exportFlow->btnSocialShareImageTapped();
    updateStripButtons();
}

CoreFilterObject MainScreenVC::createPresetObjectFromSettingWithTitle(const QString &title) const
{
    Q_ASSERT(m_view->vwSettingOptions); // there is a photo, and so there are settings
    return m_view->vwSettingOptions->createPresetObjectFromSettingWithTitle(title);
}

void MainScreenVC::setExportButtonOff()
{
    m_view->btnExport->setChecked(false);
}

void MainScreenVC::closeColorPanel()
{
    panel().colorPickerVignette()->closeColorPanel();
}

} // namespace hazelmark
