#include "MainScreenVC.h"

#include "AlertSheet.h"
#include "ApplicationDelegate.h"
#include "BarProgressIndicator.h"
#include "ColorWell.h"
#include "DrawTrackingView.h"
#include "FileDraggingView.h"
#include "FormatString.h"
#include "Geometry.h"
#include "IMGButton.h"
#include "KeyboardCursor.h"
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
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPushButton>
#include <QTimer>

#include <chrono>
#include <cmath>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;

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

SettingsPanel &MainScreenVC::panel()
{
    prepareEditing();
    return *m_view->vwSettingOptions;
}

void MainScreenVC::commandFromMenuTapped(MenuCommand command, int index)
{
    switch (command) {
    case MenuCommand::PastePhoto:
        return pastePhoto();
    case MenuCommand::ZoomIn:
        return m_zoom->zoomBySteps(1);
    case MenuCommand::ZoomOut:
        return m_zoom->zoomBySteps(-1);
    case MenuCommand::ZoomFit:
        return m_zoom->setFit();
    case MenuCommand::ZoomFull:
        return m_zoom->setScale(1);
    default:
        m_commands->perform(command, index);
    }
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
    if (m_session->state() == Session::State::Exporting)
        m_notices->say(text("DROP_WHILE_EXPORTING"));
    else if (lastExportedImage())
        m_notices->say(text("DROP_AFTER_EXPORT"));
    else
        openPhotoAtPath(path);
}

void MainScreenVC::openPhotos(const QStringList &paths)
{
    if (paths.isEmpty())
        return;
    if (paths.size() > 1)
        m_noticeAfterOpening = text("ONE_PHOTO_AT_A_TIME");
    photoDraggedWithPath(paths.first());
}

void MainScreenVC::pastePhoto()
{
    m_clipboard.asFile([self = QPointer(this)](const QString &path) {
        if (!self || !self->m_view)
            return;
        if (path.isEmpty())
            self->m_notices->say(self->text("CLIPBOARD_WITHOUT_PHOTO"));
        else
            self->openPhotoAtPath(path);
    });
}

void MainScreenVC::sayWhyRefused(const QString &path)
{
    if (path.isEmpty()) {
        m_notices->say(text("DROP_NO_FILE"));
        return;
    }
    const QFileInfo file(path);
    const auto reason = file.isDir()    ? Failure::Reason::IsFolder
                        : file.exists() ? Failure::Reason::NotAPicture
                                        : Failure::Reason::NoSuchFile;
    m_notices->say(formatString(m_application.getLocalizedStringForKey(refusalKey(reason)), {lastPathComponent(path)}));
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
    if (!m_noticeAfterOpening.isEmpty())
        m_notices->say(std::exchange(m_noticeAfterOpening, {}));
}

void MainScreenVC::photoRefused(const Failure &failure)
{
    m_noticeAfterOpening.clear();
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
    if (!photo.path().startsWith(QDir::tempPath() + QLatin1Char('/')))
        m_lastFolder = QFileInfo(photo.path()).path();
    if (m_window) // its caption, for task bars; the mark in it is set with the dot in the title strip
        m_window->setWindowTitle(
            lastPathComponent(photo.path()).replace(QLatin1String("[*]"), QLatin1String("[*][*]")) +
            QLatin1String("[*]"));
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
    m_view->vwBottom->setPixelSize(inputImage()->size().toSize());
    if (m_session->photo().isPartlyDamaged)
        m_view->vwBottom->showPartlyDamaged();
    else if (m_session->photo().isEmbeddedPreview)
        m_view->vwBottom->showEmbeddedPreview();
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
    if (!isPainting() || m_view->keyboardCursor->isCircleShown())
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
    m_zoom->refresh(); // first: near the photo it is what is seen
    m_session->requestPreview(createPresetObjectFromSettingWithTitle(QString()));
}

CoreFilterObject MainScreenVC::createPresetObjectFromSettingWithTitle(const QString &title)
{
    return panel().createPresetObjectFromSettingWithTitle(title);
}

// What becomes of the session

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
    const bool unsaved = hasPhoto() && !m_session->isSaved(createPresetObjectFromSettingWithTitle(QString()));
    m_view->setUnsavedMarkVisible(unsaved);
    if (m_window)
        m_window->setWindowModified(unsaved);
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
