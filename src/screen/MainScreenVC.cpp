#include "MainScreenVC.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "BarProgressIndicator.h"
#include "ColorWell.h"
#include "FileDraggingView.h"
#include "IMGButton.h"
#include "NotificationNames.h"
#include "OpenPanel.h"
#include "PaintView.h"
#include "PhotoFile.h"
#include "PhotoImageView.h"
#include "ScreenLog.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "TipsWindow.h"
#include "TitlebarWindow.h"

#include <QKeyEvent>
#include <QPushButton>
#include <QTimer>

namespace hazelmark {

namespace {
constexpr double kCanvasOpacity = 0.6;
}

MainScreenVC::MainScreenVC(ApplicationDelegate &application)
    : MainScreenVC(application, Work())
{
}

MainScreenVC::MainScreenVC(ApplicationDelegate &application, const Work &work)
    : m_application(application)
    , m_exportWork(work.exporting)
    , m_opener(work.open)
    , m_previews(work.render)
{
}

MainScreenVC::~MainScreenVC()
{
    if (m_view)
        m_view->removeEventFilter(this);
}

QWidget *MainScreenVC::view()
{
    if (!m_view)
        loadView();
    return m_view;
}

QString MainScreenVC::text(const char *key) const
{
    return m_application.getLocalizedStringForKey(QLatin1String(key));
}

void MainScreenVC::loadView()
{
    m_view = new MainScreenView(m_application);
    m_view->installEventFilter(this);
    observeNotifications();
    connectControls();
    connectWorkers();
    initialViewSet();
}

void MainScreenVC::observeNotifications()
{
    const auto observe = [this](QLatin1String name, void (MainScreenVC::*handler)()) {
        m_observers.push_back(
            NotificationCenter::defaultCenter().addObserver(name, [this, handler](const QVariantMap &) {
                if (m_view) // the window may take it along before this ends
                    (this->*handler)();
            }));
    };
    observe(kNotificationOpenPhotoFromMenuTapped, &MainScreenVC::btnOpenFileFromMenuTapped);
    observe(kNotificationClosePhotoFromMenuTapped, &MainScreenVC::btncloseFileFromMenuTapped);
    observe(kNotificationSavePhotoFromMenuTapped, &MainScreenVC::btnSaveFileFromMenuTapped);
    m_observers.push_back(
        NotificationCenter::defaultCenter().addObserver(kNotificationSetupHeader, [this](const QVariantMap &userInfo) {
            setupTitleBarViewForWindow(
                qobject_cast<TitlebarWindow *>(userInfo.value(kWindowObjectKey).value<QObject *>()));
        }));
    observe(kNotificationApplyPreviewEffect, &MainScreenVC::btnProcessTapped);
    observe(kNotificationWindowResized, &MainScreenVC::windowisResizing);
    observe(kNotificationWindowEndResizing, &MainScreenVC::windowEndResizing);
    observe(kNotificationShowTipsFromMenuTapped, &MainScreenVC::addDemoWindow);
    observe(kNotificationUpdateLanguage, &MainScreenVC::setLocalizedStrings);
    observe(kNotificationBurshDrawedRegionUpdated, &MainScreenVC::brushDrawedRegionUpdate);
    observe(kNotificationMouseout, &MainScreenVC::mousemoveOutFromImageRegion);
    observe(kNotificationMouseIn, &MainScreenVC::mousemoveInsideImageRegion);
}

void MainScreenVC::connectControls()
{
    connect(m_view->dropTarget, &FileDraggingView::photoDraggedWithPath, this, &MainScreenVC::photoDraggedWithPath);
    connect(m_view->btnAddPhoto, &QAbstractButton::clicked, this, &MainScreenVC::btnAddPhotoTapped);
    connect(m_view->btnAddPhotoOnPrompt, &QAbstractButton::clicked, this, &MainScreenVC::btnAddPhotoTapped);
    connect(m_view->btnExport, &QAbstractButton::clicked, this, &MainScreenVC::btnExportDenoisedImageTapped);
    connect(m_view->btnShareService, &QAbstractButton::clicked, this, &MainScreenVC::btnSocialShareImageTapped);
    for (const IMGButton *button : {m_view->btnAddPhoto, m_view->btnExport, m_view->btnShareService})
        connect(button, &IMGButton::clickOver, this, &MainScreenVC::updateStripButtons);
}

SettingsPanel &MainScreenVC::panel()
{
    prepareEditing();
    return *m_view->vwSettingOptions;
}

void MainScreenVC::prepareEditing()
{
    if (m_view->vwSettingOptions)
        return;
    m_view->makeSettingsPanel(m_application);
    connectPanel();
    m_view->vwSettingOptions->scrollToTop();
    m_view->vwSettingOptions->setLocalizedStrings();
    m_paintControl.setPaintView(m_view->paintView);
    m_paintControl.awakeFromNib();
    m_paintControl.setColor({0, 1, 0, 1});
}

void MainScreenVC::connectPanel()
{
    SettingsPanel *panel = m_view->vwSettingOptions;
    connect(panel, &SettingsPanel::segmentPaintEraseTapped, this,
            [this, panel](bool eraser) { segmentPaintEraseTapped(eraser ? panel->btnEraser() : panel->btnPaint()); });
    connect(panel, &SettingsPanel::brushDiameterSlid, this, &MainScreenVC::hadleSliderBrushDiameter);
    connect(panel, &SettingsPanel::brushHardnessSlid, this, &MainScreenVC::hadleSliderBrushHardness);
    connect(panel, &SettingsPanel::brushSizeAutoSlid, this, &MainScreenVC::handleSliderBrushSizeAutoMode);
    connect(panel, &SettingsPanel::brushValuesSet, this, &MainScreenVC::applyBrushValues);
    connect(panel, &SettingsPanel::effectChanged, this, &MainScreenVC::applyCustomEnhanceFilterOnPreviewImage);
    connect(panel, &SettingsPanel::processWanted, this, &MainScreenVC::btnProcessTapped);
    panel->setBusyTest([self = QPointer(this)] {
        return self && (self->m_previewRequests.pending() > 0 || self->m_previews.isBusy());
    });
}

void MainScreenVC::connectWorkers()
{
    connect(&m_opener, &PhotoOpener::opened, this, &MainScreenVC::photoOpened);
    connect(&m_opener, &PhotoOpener::refused, this, &MainScreenVC::photoRefused);
    connect(&m_previews, &PreviewRunner::inputDrawn, this, [this](const QImage &shown) {
        m_view->imgvwBeforeBokesh->setImage(shown);
        m_view->imgvwAfterBokesh->setImage(shown);
    });
    connect(&m_previews, &PreviewRunner::previewRendered, this, [this](const QImage &shown) {
        m_isRunningAlgorithm = false;
        if (shown.isNull()) // rather the picture before it than none
            return;
        m_view->imgvwAfterBokesh->setImage(shown);
        emit previewShown();
    });
}

void MainScreenVC::initialViewSet()
{
    m_view->btnExport->setEnabled(false);
    m_view->btnShareService->setEnabled(false);
    m_isRunningAlgorithm = false;
    m_view->progressBar->hide();
    m_isResizingWindow = false;
    m_menuSelectedIndex = -1;
    m_toolType = kToolNone;
    m_view->setPanelAndBarVisible(false);
    showHideRightMenu();
    setLocalizedStrings();

    m_view->paintView->setOpacity(kCanvasOpacity);
    m_arrDrawedPoints = std::make_shared<PaintStepList>();
    m_application.setIsUiDisabled(true);
}

void MainScreenVC::setLocalizedStrings()
{
    m_view->setLocalizedStrings(m_application);
    if (m_view->vwSettingOptions)
        m_view->vwSettingOptions->setLocalizedStrings();
    if (m_demoWin)
        m_demoWin->setLocalizedStrings();
}

void MainScreenVC::btnOpenFileFromMenuTapped()
{
    btnAddPhotoTapped();
}

void MainScreenVC::btncloseFileFromMenuTapped()
{
    btnCloseWindowTapped();
}

void MainScreenVC::btnSaveFileFromMenuTapped()
{
    btnExportDenoisedImageTapped();
}

void MainScreenVC::addDemoWindow()
{
    if (!m_window)
        return;
    if (!m_demoWin)
        m_demoWin = new TipsWindow(m_application, m_window);
    m_demoWin->addDemoWindow(m_window->frame().size());
}

void MainScreenVC::setLastExportedImage(const PhotoImagePtr &image)
{
    m_lastExportedImage = image;
    updateUnsavedMark();
}

void MainScreenVC::setExportLocked(bool locked)
{
    if (locked) {
        finishPainting();
        m_focusBeforeExport = m_window->focusWidget();
    }
    m_exportLocked = locked;
    m_application.setIsExporting(locked);
    updateLocks();
    if (!locked)
        returnFocus(m_focusBeforeExport);
    // A photo that came meanwhile waits for the export's completion, too: the result is not that photo's.
    if (!locked && m_arrived)
        QMetaObject::invokeMethod(this, &MainScreenVC::takeArrivedPhoto, Qt::QueuedConnection);
}

void MainScreenVC::updateLocks()
{
    const bool editable = hasPhoto() && !m_exportLocked;
    updateStripButtons();
    panel().setEnabled(!m_exportLocked);
    m_view->paintView->setEnabled(!m_exportLocked);
    m_application.setIsUiDisabled(!editable);
}

/// What the three buttons allow, and what is open because of them: so long they are on.
void MainScreenVC::updateStripButtons()
{
    const bool editable = hasPhoto() && !m_exportLocked;
    m_view->btnAddPhoto->setEnabled(!m_exportLocked);
    m_view->btnExport->setEnabled(editable);
    m_view->btnShareService->setEnabled(editable);
    m_view->btnAddPhoto->setChecked(m_window && OpenPanel::isOpen(*m_window));
    m_view->btnExport->setChecked(m_exportFlow && m_exportFlow->isSaving());
    m_view->btnShareService->setChecked(m_exportFlow && m_exportFlow->isSharing());
}

/// Controls that are disabled or hidden hand the focus on, in the end to the button that closes the window.
void MainScreenVC::returnFocus(const QPointer<QWidget> &before)
{
    QWidget *now = m_view->window()->focusWidget();
    if (before && before->isEnabled() && before->isVisible())
        before->setFocus();
    else if (now && now != before)
        now->clearFocus();
}

MainScreenVC::Edits MainScreenVC::edits() const
{
    Edits edits{createPresetObjectFromSettingWithTitle(QString()), m_arrDrawedPoints, m_arrDrawedPoints->size()};
    edits.settings.dateString.clear();
    return edits;
}

void MainScreenVC::updateUnsavedMark()
{
    m_view->setUnsavedMarkVisible(hasPhoto() && !m_arrDrawedPoints->empty() && m_writtenEdits != edits());
}

void MainScreenVC::showAlertWithTitle(const QString &title, const QString &andMessage)
{
    if (m_window)
        AlertSheet::showAlertWithTitle(*m_window, m_application, title, andMessage);
}

void MainScreenVC::keyDown(Qt::KeyboardModifiers modifiers)
{
    qCInfo(lcScreen, "Caught key event = %lu", static_cast<unsigned long>(modifiers));
}

bool MainScreenVC::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_view && event->type() == QEvent::Paint && !m_view->vwSettingOptions)
        QTimer::singleShot(0, this, &MainScreenVC::prepareEditing);
    // Only keys that no control had a use for come up to the view.
    if (watched == m_view && event->type() == QEvent::KeyPress)
        keyDown(static_cast<QKeyEvent *>(event)->modifiers());
    return QObject::eventFilter(watched, event);
}

} // namespace hazelmark
