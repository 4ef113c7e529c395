#include "MainScreenVC.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "BarProgressIndicator.h"
#include "ColorWell.h"
#include "DrawTrackingView.h"
#include "FileDraggingView.h"
#include "FloatSlider.h"
#include "FormatString.h"
#include "Geometry.h"
#include "IMGButton.h"
#include "Log.h"
#include "NotificationNames.h"
#include "OpenPanel.h"
#include "PaintView.h"
#include "PathParts.h"
#include "PhotoImageView.h"
#include "ReadableTypes.h"
#include "RefusalKey.h"
#include "ScreenProfile.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "TipsWindow.h"
#include "TitlebarWindow.h"

#include <QCursor>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPushButton>
#include <QTimer>

#include <chrono>
#include <cmath>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;

constexpr double kCanvasOpacity = 0.6;
constexpr auto kRedrawDelay = 1000ms;
/// The replay leaves the stamp size of the last step behind; so much later the slider's is back.
constexpr auto kDiameterDelay = 500ms;

} // namespace

MainScreenVC::MainScreenVC(ApplicationDelegate &application, Session::Work work)
    : m_application(application)
    , m_work(std::move(work))
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

// Start-up

void MainScreenVC::loadView()
{
    m_view = new MainScreenView(m_application);
    m_view->installEventFilter(this);
    m_session = std::make_unique<Session>(*m_view->paintView, m_work);
    connect(m_view, &QObject::destroyed, this, [this] {
        m_exportFlow.reset();
        m_chrome.reset();
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

void MainScreenVC::initialViewSet()
{
    m_view->btnExport->setEnabled(false);
    m_view->btnShareService->setEnabled(false);
    m_session->setIsRunningAlgorithm(false);
    m_view->progressBar->hide();
    m_isResizingWindow = false;
    m_menuSelectedIndex = -1;
    m_session->painting().setToolType(Painting::kToolNone);
    m_view->setPanelAndBarVisible(false);
    showHideRightMenu();
    setLocalizedStrings();
    m_view->paintView->setOpacity(kCanvasOpacity);
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
}

SettingsPanel &MainScreenVC::panel()
{
    prepareEditing();
    return *m_view->vwSettingOptions;
}

void MainScreenVC::setLocalizedStrings()
{
    m_view->setLocalizedStrings(m_application);
    if (m_view->vwSettingOptions)
        m_view->vwSettingOptions->setLocalizedStrings();
    if (m_demoWin)
        m_demoWin->setLocalizedStrings();
}

// The photo

void MainScreenVC::btnAddPhotoTapped()
{
    if (m_session->state() == Session::State::Exporting || !m_window)
        return;
    OpenPanel::show(
        *m_window, m_application, m_lastFolder, this, [this](const QString &path) { openPanelFinished(path); },
        [this] { updateStripButtons(); });
    updateStripButtons();
}

void MainScreenVC::openPanelFinished(const QString &path)
{
    if (OpenPanel::isInTrash(path))
        showAlertWithTitle(text("ERROR_CANT_PROCESS"), {});
    else
        openPhotoAtPath(path);
}

void MainScreenVC::photoDraggedWithPath(const QString &path)
{
    if (!lastExportedImage())
        openPhotoAtPath(path);
}

/// Every photo that a person asks for comes this way: photoRead() or photoRefused() follows.
void MainScreenVC::openPhotoAtPath(const QString &path)
{
    if (m_session->state() != Session::State::Exporting)
        m_session->open(path, wantedView());
}

PhotoView MainScreenVC::wantedView() const
{
    return {m_view->largestPixelSize(), m_view->previewSizeWithPhoto() * m_view->devicePixelRatioF(),
            m_session->colors()};
}

void MainScreenVC::photoRead(const OpenPhoto &photo)
{
    if (!isValidImage(photo))
        return;
    panel().resetAllSlidersAndTextfields();
    resizeImageToFitContainer(inputImage());
    selectedImageChanged();
    showDemoWindowFirsttime();
}

void MainScreenVC::photoRefused(const Failure &failure)
{
    showAlertWithTitle(text("ERROR_CANT_OPEN"),
                       formatString(m_application.getLocalizedStringForKey(refusalKey(failure.reason)),
                                    {lastPathComponent(failure.path)}));
}

bool MainScreenVC::isValidImage(const QString &path)
{
    const Outcome<OpenPhoto> photo = m_session->read(path, wantedView());
    return !photo || isValidImage(*photo);
}

bool MainScreenVC::isValidImage(const OpenPhoto &photo)
{
    m_zoom->setFit();
    m_session->setPhoto(photo);
    m_lastFolder = QFileInfo(photo.path()).path();
    m_application.setSelectedImageFile(photo.record);
    m_view->imgvwBeforeBokesh->setImage(photo.firstSight);
    m_view->imgvwAfterBokesh->setImage(photo.firstSight);
    m_view->setPromptVisible(false);
    setupRightSettingOptionWithSelectionIndex(Painting::kToolPaint);
    return true;
}

void MainScreenVC::resizeImageToFitContainer(const PhotoImagePtr &image)
{
    if (!image || !ReadableTypes::contains(m_session->photo().type)) {
        m_view->showAddPhotoLayout();
        return;
    }
    m_view->showPhotoLayout();
    const QSize box = m_view->previewSize();
    const QSizeF fitted = Geometry::getAspectFitModeSizeWithsize(image->size(), box);
    m_view->placePhoto({(box.width() - fitted.width()) * 0.5, (box.height() - fitted.height()) * 0.5, fitted.width(),
                        fitted.height()});
    // In pixels of the screen, so that the preview is as sharp as it can be; on most screens these are the points.
    const QSizeF pixels = fitted * m_view->devicePixelRatioF();
    m_session->fit(QSizeF(std::floor(pixels.width()), std::floor(pixels.height())).expandedTo({1, 1}));
    m_zoom->setPlace(image->size(), m_view->photoFrame());
}

void MainScreenVC::selectedImageChanged()
{
    const qint32 toolOnEntry = toolType();
    showHideRightMenu();
    if (!hasPhoto())
        return;
    btnResetTapped();
    setupBottomSummaryInfo();
    loadInitMaskImages();
    sessionStateChanged();
    if (toolOnEntry != Painting::kToolNone)
        setupRightSettingOptionWithSelectionIndex(toolOnEntry);
    segmentPaintEraseTapped(panel().btnPaint());
}

void MainScreenVC::showHideRightMenu()
{
    m_view->setPanelAndBarVisible(hasPhoto());
    if (hasPhoto())
        resizeImageToFitContainer(inputImage());
}

void MainScreenVC::setupRightSettingOptionWithSelectionIndex(qint32 index)
{
    const qint32 toolOnEntry = toolType();
    btnResetTapped();
    if (toolOnEntry == Painting::kToolNone)
        showHideRightMenu();
    m_session->painting().setToolType(index);
    m_view->setPanelAndBarVisible(true);
    clearCanvas();
    m_view->paintView->show();
    adjustPaintEraseview();
    panel().scrollToTop();
}

void MainScreenVC::btnResetTapped()
{
    m_session->painting().reset();
    m_view->paintView->hide();
    clearCanvas();
    m_view->paintView->setCursor(Qt::ArrowCursor);
}

void MainScreenVC::setupBottomSummaryInfo()
{
    m_view->vwBottom->setupBottomSummaryInfo(imageUrl());
    if (m_session->photo().isPartlyDamaged)
        m_view->vwBottom->showPartlyDamaged();
}

void MainScreenVC::addDemoWindow()
{
    if (!m_window)
        return;
    if (!m_demoWin)
        m_demoWin = new TipsWindow(m_application, m_window);
    m_demoWin->addDemoWindow(m_window->frame().size());
}

// Painting

void MainScreenVC::mousemoveOutFromImageRegion()
{
    if (!isPainting())
        return;
    m_view->paintView->hide();
    m_view->drawTrackingView->show();
}

void MainScreenVC::mousemoveInsideImageRegion()
{
    if (isPainting())
        m_view->paintView->show();
}

/// After an opening or a new layout no event tells whether the pointer is over the photo. A stroke that has left it
/// goes on; the canvas notices by itself when it is over.
void MainScreenVC::checkPointerOverPhoto()
{
    const QPointF pointer = m_view->vwPreviewContainer->mapFromGlobal(QPointF(QCursor::pos()));
    if (m_view->visiblePhotoFrame().contains(pointer))
        mousemoveInsideImageRegion();
    else if (!m_view->paintView->isStrokeUnderWay())
        mousemoveOutFromImageRegion();
}

void MainScreenVC::brushDrawedRegionUpdate()
{
    if (!isPainting())
        return;
    m_session->endStroke();
    btnProcessTapped();
}

void MainScreenVC::loadInitMaskImages()
{
    m_session->painting().loadInitMaskImages(m_view->photoFrame().size());
}

void MainScreenVC::clearCanvas()
{
    m_session->painting().clear();
    updateUnsavedMark();
}

void MainScreenVC::adjustPaintEraseview()
{
    prepareEditing();
    resizeImageToFitContainer(inputImage());
    m_session->painting().scaleInitMaskImages(m_view->photoFrame().size());
    m_view->paintView->show();
    m_view->paintView->setToolType(toolType());
    m_brush->apply();
    QTimer::singleShot(kRedrawDelay, this, &MainScreenVC::drawPaintCustomAlfterDelay);
    checkPointerOverPhoto();
}

void MainScreenVC::drawPaintCustomAlfterDelay()
{
    if (!m_view)
        return;
    m_session->painting().redraw();
    m_brush->showToolInForce();
    btnProcessTapped();
    QTimer::singleShot(kDiameterDelay, m_brush.get(), &BrushControls::hadleSliderBrushDiameter);
}

// Previews

void MainScreenVC::btnProcessTapped()
{
    m_previewRequests.run([this] { applyeffectOnPreviewInBackground(); }, [] {});
}

/// On a thread of the request queue: the work itself starts on the main thread.
void MainScreenVC::applyeffectOnPreviewInBackground()
{
    QMetaObject::invokeMethod(this, &MainScreenVC::applyCustomEnhanceFilterOnPreviewImage, Qt::QueuedConnection);
}

void MainScreenVC::applyCustomEnhanceFilterOnPreviewImage()
{
    if (!m_view)
        return;
    m_session->requestPreview(createPresetObjectFromSettingWithTitle(QString()));
    m_zoom->refresh();
}

CoreFilterObject MainScreenVC::createPresetObjectFromSettingWithTitle(const QString &title)
{
    return panel().createPresetObjectFromSettingWithTitle(title);
}

// What becomes of the session

void MainScreenVC::connectSession()
{
    connect(m_session.get(), &Session::loadingChanged, this, [this](const QString &fileName) {
        m_view->showLoading(fileName.isEmpty() ? QString() : formatString(text("LOADING"), {fileName}));
    });
    connect(m_session.get(), &Session::photoRead, this, &MainScreenVC::photoRead);
    connect(m_session.get(), &Session::refused, this, &MainScreenVC::photoRefused);
    connect(m_session.get(), &Session::stateChanged, this, &MainScreenVC::sessionStateChanged);
    connect(m_session.get(), &Session::editsChanged, this, &MainScreenVC::updateUnsavedMark);
    connect(m_session.get(), &Session::paintingSettingsRead, this,
            [this](std::optional<float> blurAmount, std::optional<float> vignetteAmount) {
                if (blurAmount)
                    panel().slider(Setting::BlurAmount)->setValue(*blurAmount);
                if (vignetteAmount)
                    panel().slider(Setting::Vignette)->setValue(*vignetteAmount);
                panel().setAllTextsForSliders();
            });
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

/// While an export runs: no second one, no sharing, no other settings, no painting, no other photo.
void MainScreenVC::sessionStateChanged()
{
    const bool isExporting = m_session->state() == Session::State::Exporting;
    const bool isEditing = m_session->state() == Session::State::Editing;
    QWidget *focus = m_view->window()->focusWidget();
    if (isExporting)
        m_focusBeforeExport = focus;
    updateStripButtons();
    panel().setEnabled(!isExporting);
    m_view->paintView->setEnabled(!isExporting);
    m_application.setIsUiDisabled(!isEditing);
    // A control that is disabled hands the focus on, in the end to the button that closes the window.
    QWidget *handedOn = m_view->window()->focusWidget();
    if (isExporting && handedOn && handedOn != focus)
        handedOn->clearFocus();
    if (const QPointer<QWidget> before = isExporting ? nullptr : std::exchange(m_focusBeforeExport, nullptr))
        before->setFocus();
}

/// What the three buttons allow, and what is open because of them: so long they are on.
void MainScreenVC::updateStripButtons()
{
    const bool isEditing = m_session->state() == Session::State::Editing;
    m_view->btnAddPhoto->setEnabled(m_session->state() != Session::State::Exporting);
    m_view->btnExport->setEnabled(isEditing);
    m_view->btnShareService->setEnabled(isEditing);
    m_view->btnAddPhoto->setChecked(m_window && OpenPanel::isOpen(*m_window));
    m_view->btnExport->setChecked(m_exportFlow && m_exportFlow->isSaving());
    m_view->btnShareService->setChecked(m_exportFlow && m_exportFlow->isSharing());
}

void MainScreenVC::updateUnsavedMark()
{
    m_view->setUnsavedMarkVisible(hasPhoto() && !m_session->isSaved(createPresetObjectFromSettingWithTitle(QString())));
}

void MainScreenVC::showAlertWithTitle(const QString &title, const QString &andMessage)
{
    if (m_window)
        AlertSheet::showAlertWithTitle(*m_window, m_application, title, andMessage);
}

// Export and sharing

void MainScreenVC::btnExportDenoisedImageTapped()
{
    if (m_exportFlow)
        m_exportFlow->btnExportDenoisedImageTapped();
    updateStripButtons();
}

void MainScreenVC::btnSocialShareImageTapped()
{
    panel().colorPickerVignette()->closeColorPanel();
    if (m_exportFlow)
        m_exportFlow->btnSocialShareImageTapped();
    updateStripButtons();
}

// The window

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
    m_exportFlow = std::make_unique<ExportFlow>(*m_session, m_application, *window, *m_view->btnExport,
                                                [this] { return createPresetObjectFromSettingWithTitle(QString()); });
    connect(m_exportFlow.get(), &ExportFlow::openChanged, this, &MainScreenVC::updateStripButtons);
    connect(&m_exportFlow->sharePicker(), &SharePicker::shared, m_view->vwBottom, &SummaryBar::showMessage);
    connect(&m_exportFlow->sharePicker(), &SharePicker::closed, this, &MainScreenVC::updateStripButtons);
}

void MainScreenVC::followScreen(QScreen *screen)
{
    m_session->setColors(DisplayColors(screenProfile(screen)));
    if (hasPhoto())
        windowEndResizing();
}

void MainScreenVC::btnCloseWindowTapped()
{
    if (m_chrome)
        m_chrome->btnCloseWindowTapped();
}

void MainScreenVC::windowisResizing()
{
    windowDidResize();
    resizeImageToFitContainer(inputImage());
}

void MainScreenVC::windowDidResize()
{
    if (hasPhoto() && !isRunningAlgorithm())
        m_isResizingWindow = true;
}

void MainScreenVC::windowEndResizing()
{
    m_isResizingWindow = false;
    if (!isPainting())
        return;
    m_session->painting().keepStrokes();
    adjustPaintEraseview();
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
