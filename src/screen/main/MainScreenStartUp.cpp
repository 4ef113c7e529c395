// How the main screen comes up, and what it listens to; what it does stands in MainScreenVC.cpp.
#include "MainScreenVC.h"

#include "ApplicationDelegate.h"
#include "BarProgressIndicator.h"
#include "FileDraggingView.h"
#include "FormatString.h"
#include "IMGButton.h"
#include "KeyboardCursor.h"
#include "NotificationNames.h"
#include "PaintView.h"
#include "PhotoImageView.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "TipsWindow.h"
#include "TitlebarWindow.h"

#include <QPushButton>

namespace hazelmark {

void MainScreenVC::loadView()
{
    m_view = new MainScreenView(m_application);
    m_view->installEventFilter(this);
    m_session = std::make_unique<Session>(*m_view->paintView, m_work);
    m_sight = new CanvasSight(*m_view);
    m_notices = new Notices(*m_view);
    m_commands = std::make_unique<EditCommands>(*m_view, *m_session, m_application, *m_sight, *m_notices,
                                                [this] { return createPresetObjectFromSettingWithTitle(QString()); });
    connect(m_view, &QObject::destroyed, this, [this] {
        m_exportFlow.reset();
        m_chrome.reset();
        m_keys.reset();
        m_commands.reset();
        m_brush.reset();
        m_session.reset();
    });
    m_zoom = new PhotoZoom(*m_view, *m_session, [this] { return createPresetObjectFromSettingWithTitle(QString()); });
    observeNotifications();
    connectControls();
    connectSession();
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
    m_observers.push_back(NotificationCenter::defaultCenter().addObserver(
        kNotificationCommandFromMenuTapped, [this](const QVariantMap &userInfo) {
            if (m_view)
                commandFromMenuTapped(static_cast<MenuCommand>(userInfo.value(kCommandKey).toInt()),
                                      userInfo.value(kCommandIndexKey).toInt());
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
    connect(m_view->dropTarget, &FileDraggingView::refused, this, &MainScreenVC::sayWhyRefused);
    connect(m_view->keyboardCursor, &KeyboardCursor::circleChanged, this, [this] {
        if (m_view->keyboardCursor->isCircleShown())
            mousemoveInsideImageRegion();
        else if (isPainting())
            checkPointerOverPhoto();
    });
    connect(m_view->btnAddPhoto, &QAbstractButton::clicked, this, &MainScreenVC::btnAddPhotoTapped);
    connect(m_view->btnAddPhotoOnPrompt, &QAbstractButton::clicked, this, &MainScreenVC::btnAddPhotoTapped);
    connect(m_view->btnExport, &QAbstractButton::clicked, this, &MainScreenVC::btnExportDenoisedImageTapped);
    connect(m_view->btnShareService, &QAbstractButton::clicked, this, &MainScreenVC::btnSocialShareImageTapped);
    for (const IMGButton *button : {m_view->btnAddPhoto, m_view->btnExport, m_view->btnShareService})
        connect(button, &IMGButton::clickOver, this, &MainScreenVC::updateStripButtons);
}

void MainScreenVC::initialViewSet()
{
    m_view->btnExport->setEnabled(false);
    m_view->btnShareService->setEnabled(false);
    m_session->setIsRunningAlgorithm(false);
    m_isResizingWindow = false;
    m_menuSelectedIndex = -1;
    m_session->painting().setToolType(Painting::kToolNone);
    showHideRightMenu();
    setLocalizedStrings();
    m_application.setIsUiDisabled(true);
}

void MainScreenVC::prepareEditing()
{
    if (m_view->vwSettingOptions)
        return;
    m_view->makeSettingsPanel(m_application);
    SettingsPanel *panel = m_view->vwSettingOptions;
    m_brush = std::make_unique<BrushControls>(*panel, *m_view->paintView, m_session->painting());
    m_zoom->setBrush(m_brush.get());
    connect(panel, &SettingsPanel::effectChanged, this, &MainScreenVC::applyCustomEnhanceFilterOnPreviewImage);
    connect(panel, &SettingsPanel::processWanted, this, &MainScreenVC::btnProcessTapped);
    panel->setBusyTest([self = QPointer(this)] {
        return self && (self->m_previewRequests.pending() > 0 || self->m_session->hasPreviewsUnderWay());
    });
    panel->scrollToTop();
    panel->setLocalizedStrings();
    m_commands->setBrush(*panel, *m_brush);
    if (m_window)
        m_view->orderTabs({m_window->closeButton(), m_window->minimizeButton(), m_window->zoomButton(),
                           m_window->fullScreenButton()});
}

void MainScreenVC::setLocalizedStrings()
{
    m_view->setLocalizedStrings(m_application);
    if (m_view->vwSettingOptions)
        m_view->vwSettingOptions->setLocalizedStrings();
    if (m_demoWin)
        m_demoWin->setLocalizedStrings();
}

void MainScreenVC::connectSession()
{
    connect(m_session.get(), &Session::loadingChanged, this, [this](const QString &fileName) {
        m_view->showLoading(fileName.isEmpty() ? QString() : formatString(text("LOADING"), {fileName}));
    });
    connect(m_zoom, &PhotoZoom::readingChanged, this, [this](bool isReading) {
        if (!m_session->isLoading())
            m_view->showLoading(isReading ? text("READING_FULL_SIZE") : QString());
    });
    connect(m_zoom, &PhotoZoom::readingProgressed, this, [this](double done) {
        if (!m_session->isLoading())
            m_view->showLoading(formatString(text("READING_FULL_SIZE_SHARE"), {QString::number(int(100 * done))}));
    });
    connect(m_session.get(), &Session::photoRead, this, &MainScreenVC::photoRead);
    connect(m_session.get(), &Session::refused, this, &MainScreenVC::photoRefused);
    connect(m_session.get(), &Session::stateChanged, this, &MainScreenVC::sessionStateChanged);
    connect(m_session.get(), &Session::editsChanged, this, &MainScreenVC::updateUnsavedMark);
    connect(m_session.get(), &Session::paintingReplaced, this, [this] {
        m_brush->apply();
        btnProcessTapped();
    });
    connect(m_session.get(), &Session::inputDrawn, this, [this](const QImage &shown) {
        m_view->imgvwBeforeBokesh->setImage(shown);
        m_view->imgvwAfterBokesh->setImage(shown);
    });
    connect(m_session.get(), &Session::previewRendered, this, [this](const QImage &shown) {
        if (shown.isNull()) // rather the picture before it than none
            return;
        m_view->imgvwAfterBokesh->setImage(shown);
        emit previewShown();
    });
    connect(m_session.get(), &Session::exportStarted, this, [this](const QString &path) {
        m_view->progressBar->show();
        if (!path.isEmpty())
            m_view->vwBottom->showExporting(path);
    });
    connect(m_session.get(), &Session::exportProgressed, m_view->progressBar, &BarProgressIndicator::setValue);
    connect(m_session.get(), &Session::exportEnded, this, [this](const PhotoExport::Result &result) {
        m_view->progressBar->hide();
        if (result.writtenPath.isEmpty())
            m_view->vwBottom->clearExport();
        else
            m_view->vwBottom->showExported(result.writtenPath);
    });
}

void MainScreenVC::setupTitleBarViewForWindow(TitlebarWindow *window)
{
    if (!window)
        return;
    m_window = window;
    TitlebarWindow::Actions actions;
    actions.close = [this] { btnCloseWindowTapped(); };
    actions.minimize = [this] { btnMinimizeWindowTapped(); };
    actions.zoom = [this] { btnZoomWindowTapped(); };
    window->setActions(actions);
    m_chrome = std::make_unique<MainWindowChrome>(m_application, *m_session, *window);
    connect(m_chrome.get(), &MainWindowChrome::screenChanged, this, &MainScreenVC::followScreen);
    m_commands->setWindow(window);
    m_zoom->setWindow(*window);
    m_keys = std::make_unique<ScreenKeys>(*m_view, *window, *m_commands, *m_sight);
    m_commands->publish();
    m_exportFlow = std::make_unique<ExportFlow>(*m_session, m_application, *window, *m_view->btnExport,
                                                [this] { return createPresetObjectFromSettingWithTitle(QString()); });
    connect(m_exportFlow.get(), &ExportFlow::openChanged, this, &MainScreenVC::updateStripButtons);
    connect(&m_exportFlow->sharePicker(), &SharePicker::shared, m_view->vwBottom, &SummaryBar::showMessage);
    connect(&m_exportFlow->sharePicker(), &SharePicker::closed, this, &MainScreenVC::updateStripButtons);
}

} // namespace hazelmark
