// The photo workflow of the main screen: opening, fitting, and what a new photo sets back.
#include "MainScreenVC.h"

#include "ApplicationDelegate.h"
#include "FormatString.h"
#include "Geometry.h"
#include "IMGButton.h"
#include "OpenPanel.h"
#include "PaintView.h"
#include "PathParts.h"
#include "PhotoFile.h"
#include "PhotoImageView.h"
#include "ReadableTypes.h"
#include "RefusalKey.h"
#include "SettingsPanel.h"
#include "SummaryBar.h"
#include "TitlebarWindow.h"
#include "UserSession.h"
#include "Utils.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>

#include <cmath>
#include <utility>

namespace hazelmark {

namespace {

/// Only the person's own trash, and only for a login name without capitals: the name is not lowered as the path is.
bool isInTrash(const QString &path)
{
    const QString trash = formatString(QStringLiteral("/users/%@/.trash/"), {UserSession::current().loginName()});
    return path.toLower().startsWith(trash);
}

} // namespace

void MainScreenVC::btnAddPhotoTapped()
{
    if (m_exportLocked || !m_window)
        return;
    OpenPanel::show(
        *m_window, m_application, m_lastFolder, this, [this](const QString &path) { openPanelFinished(path); },
        [this] { updateStripButtons(); });
    updateStripButtons();
}

void MainScreenVC::openPanelFinished(const QString &path)
{
    if (m_exportLocked)
        return;
    if (isInTrash(path))
        showAlertWithTitle(text("ERROR_CANT_PROCESS"), {});
    else
        openPhotoAtPath(path);
}

void MainScreenVC::photoDraggedWithPath(const QString &path)
{
    if (!m_lastExportedImage && !m_exportLocked)
        openPhotoAtPath(path);
}

/// The way in, for every way in which a photo comes. Nothing is touched before it is whole.
void MainScreenVC::openPhotoAtPath(const QString &path)
{
    m_opener.open(path, wantedSizes(), m_previews.colors());
    m_view->showLoading(formatString(text("LOADING"), {lastPathComponent(path)}));
}

void MainScreenVC::photoOpened(const OpenedPhoto &photo)
{
    m_view->showLoading({});
    if (m_exportLocked) {
        m_arrived = std::make_unique<OpenedPhoto>(photo);
        return;
    }
    const QPointer<QWidget> focus = m_view->window()->focusWidget();
    if (isValidImage(photo)) {
        panel().resetAllSlidersAndTextfields();
        resizeImageToFitContainer(m_inputImage);
        selectedImageChanged();
        showDemoWindowFirsttime();
    }
    returnFocus(focus);
}

void MainScreenVC::takeArrivedPhoto()
{
    if (const auto arrived = std::exchange(m_arrived, nullptr))
        photoOpened(*arrived);
}

bool MainScreenVC::isValidImage(const QString &path)
{
    const Outcome<OpenedPhoto> photo = m_opener.read(path, wantedSizes(), m_previews.colors());
    return !photo || isValidImage(*photo);
}

bool MainScreenVC::isValidImage(const OpenedPhoto &photo)
{
    m_previews.startPhoto();
    m_imageUrl = photo.record->filePath();
    m_imageType = photo.type;
    m_isPartlyDamaged = photo.isPartlyDamaged;
    m_inputImage = photo.inputImage;
    m_lastFolder = QFileInfo(m_imageUrl).path();
    m_application.setSelectedImageFile(photo.record);
    setLastExportedImage(nullptr);
    m_view->imgvwBeforeBokesh->setImage(photo.firstSight);
    m_view->imgvwAfterBokesh->setImage(photo.firstSight);
    m_view->vwDragging->hide();
    setupRightSettingOptionWithSelectionIndex(kToolPaint);
    return true;
}

void MainScreenVC::photoRefused(const Failure &failure)
{
    if (!m_opener.isLoading())
        m_view->showLoading({});
    showRefusal(failure);
}

void MainScreenVC::showRefusal(const Failure &failure)
{
    showAlertWithTitle(text("ERROR_CANT_OPEN"),
                       formatString(m_application.getLocalizedStringForKey(refusalKey(failure.reason)),
                                    {lastPathComponent(failure.path)}));
}

PhotoOpener::Sizes MainScreenVC::wantedSizes() const
{
    const qreal scale = m_view->devicePixelRatioF();
    QSize largest = m_view->size() * scale;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        largest = largest.expandedTo(screen->size() * screen->devicePixelRatio());
    return {largest, m_view->previewSizeWithPhoto() * scale};
}

void MainScreenVC::resizeImageToFitContainer(const PhotoImagePtr &image)
{
    if (!image || !ReadableTypes::contains(m_imageType)) {
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
    const QSizeF size = QSizeF(std::floor(pixels.width()), std::floor(pixels.height())).expandedTo({1, 1});
    if (m_fittedImage != image || m_resizedInputImage->size() != size) {
        // Scaling sets the size of what it scales; the photo keeps its own, or every fit would round the one before.
        const QSizeF own = image->size();
        m_resizedInputImage = Utils::sharedUtils().scaleImage(image, size);
        image->setSize(own);
        m_fittedImage = image;
    }
    m_previews.requestInput(m_resizedInputImage);
}

void MainScreenVC::selectedImageChanged()
{
    const qint32 toolOnEntry = m_toolType;
    showHideRightMenu();
    if (!hasPhoto())
        return;
    btnResetTapped();
    setupBottomSummaryInfo();
    loadInitMaskImages();
    updateLocks();
    if (toolOnEntry != kToolNone)
        setupRightSettingOptionWithSelectionIndex(toolOnEntry);
    segmentPaintEraseTapped(panel().btnPaint());
}

void MainScreenVC::showHideRightMenu()
{
    m_view->setPanelAndBarVisible(hasPhoto());
    if (hasPhoto())
        resizeImageToFitContainer(m_inputImage);
}

void MainScreenVC::setupRightSettingOptionWithSelectionIndex(qint32 index)
{
    const qint32 toolOnEntry = m_toolType;
    btnResetTapped();
    if (toolOnEntry == kToolNone)
        showHideRightMenu();
    m_toolType = index;
    m_view->setPanelAndBarVisible(true);
    clearCanvas();
    m_view->paintView->show();
    adjustPaintEraseview();
    panel().scrollToTop();
}

void MainScreenVC::btnResetTapped()
{
    m_maskImage = nullptr;
    m_maskGreenImageWithCustomPaint = nullptr;
    m_toolType = kToolNone;
    m_view->paintView->hide();
    clearCanvas();
    setArrowCursor();
}

void MainScreenVC::setupBottomSummaryInfo()
{
    m_view->vwBottom->setupBottomSummaryInfo(m_imageUrl);
    if (m_isPartlyDamaged)
        m_view->vwBottom->showPartlyDamaged();
}

} // namespace hazelmark
