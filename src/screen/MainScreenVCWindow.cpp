// The main screen's dealings with its window: the title bar, the window buttons, closing, resizing.
#include "MainScreenVC.h"

#include "ApplicationDelegate.h"
#include "IMGButton.h"
#include "PaintView.h"
#include "SaveChangesSheet.h"
#include "Screen.h"
#include "ScreenProfile.h"
#include "SheetQueue.h"
#include "Theme.h"
#include "TitlebarWindow.h"

#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;

constexpr int kFirstWidthPoints = 1300;
constexpr int kButtonTopMarginPoints = 3;
constexpr int kButtonLeftMarginPoints = 7;
constexpr auto kHideButtonsDelay = 20ms;

void setImages(IMGButton *button, const char *name)
{
    const QString base = QLatin1String(name);
    TitlebarWindow::setButtonImages(*button, base + QStringLiteral("-normal"), base + QStringLiteral("-press"),
                                    base + QStringLiteral("-hover"));
}

} // namespace

void MainScreenVC::setupTitleBarViewForWindow(TitlebarWindow *window)
{
    if (!window)
        return;
    m_window = window;
    makeExportFlow();
    window->setTitleBarHeight(theme::kTitleBarHeight);
    window->setTitleBarButtonMargins(kButtonTopMarginPoints, kButtonLeftMarginPoints);
    // The window's controller comes later with another frame and other limits: those hold.
    const QRect visible = Screen::mainScreen().visibleFrame().toRect();
    window->setFrameSizeLimits(window->minimumFrameSize(), visible.size());
    window->setFrame({visible.topLeft(), QSize(std::min(kFirstWidthPoints, visible.width()), visible.height())});
    TitlebarWindow::Actions actions;
    actions.close = [this] { btnCloseWindowTapped(); };
    actions.minimize = [this] { btnMinimizeWindowTapped(); };
    actions.zoom = [this] { btnZoomWindowTapped(); };
    window->setActions(actions);
    setImages(window->closeButton(), "close");
    setImages(window->minimizeButton(), "min");
    setImages(window->zoomButton(), "max");
    QTimer::singleShot(kHideButtonsDelay, this, &MainScreenVC::hideWindowBtnsAfterDelay);
}

/// The desktop's own buttons have no place beside the window's: the window is without the desktop's frame, and by now
/// it exists on a screen, whose colours are followed from here on.
void MainScreenVC::hideWindowBtnsAfterDelay()
{
    QWindow *window = m_window ? m_window->windowHandle() : nullptr;
    if (!window)
        return;
    window->setFlag(Qt::FramelessWindowHint);
    connect(window, &QWindow::screenChanged, this, &MainScreenVC::followScreen, Qt::UniqueConnection);
    followScreen();
}

/// The window is on another screen now: other colours, and perhaps another backing scale.
void MainScreenVC::followScreen()
{
    const QWindow *window = m_window ? m_window->windowHandle() : nullptr;
    if (!window || !m_view)
        return;
    m_previews.setColors(DisplayColors(screenProfile(window->screen())));
    if (hasPhoto())
        windowEndResizing();
}

void MainScreenVC::btnCloseWindowTapped()
{
    if (!m_window)
        return;
    if (m_lastExportedImage || m_application.arraySelectedImagesToProcess().isEmpty()) {
        m_window->closeNow();
        return;
    }
    if (m_windowSaveChanges)
        return;
    m_windowSaveChanges = new SaveChangesSheet(m_application);
    connect(m_windowSaveChanges, &SaveChangesSheet::saveTapped, this, &MainScreenVC::btnSaveChangesTapped);
    connect(m_windowSaveChanges, &SaveChangesSheet::dontSaveTapped, this, &MainScreenVC::btnDontSaveChangesTapped);
    connect(m_windowSaveChanges, &SaveChangesSheet::cancelTapped, this, &MainScreenVC::btnCancelChangesTapped);
    SheetQueue::forWindow(*m_window).present(m_windowSaveChanges);
}

void MainScreenVC::takeDownSaveChanges()
{
    if (m_windowSaveChanges)
        m_windowSaveChanges->done(QDialog::Accepted);
    m_windowSaveChanges.clear();
    if (m_window)
        m_window->closeButton()->setChecked(false);
}

/// Leaves the person at the screen, to export from there.
void MainScreenVC::btnSaveChangesTapped()
{
    takeDownSaveChanges();
}

void MainScreenVC::btnDontSaveChangesTapped()
{
    takeDownSaveChanges();
    if (!std::exchange(m_isExportingWithAddingNewImage, false) && m_window)
        m_window->closeNow();
}

void MainScreenVC::btnCancelChangesTapped()
{
    m_isExportingWithAddingNewImage = false;
    takeDownSaveChanges();
}

void MainScreenVC::btnMinimizeWindowTapped()
{
    m_window->showMinimized();
    m_window->minimizeButton()->setChecked(true);
}

void MainScreenVC::btnZoomWindowTapped()
{
    if (m_isRunningAlgorithm)
        m_window->zoomButton()->setChecked(true);
    else
        m_window->zoom();
}

void MainScreenVC::windowisResizing()
{
    windowDidResize();
    resizeImageToFitContainer(m_inputImage);
}

void MainScreenVC::windowDidResize()
{
    if (hasPhoto() && !m_isRunningAlgorithm)
        m_isResizingWindow = true;
}

/// The refit itself has been done, and the redraw follows on "notificationWindowEndResizing".
void MainScreenVC::windowDidEndLiveResize() {}

void MainScreenVC::windowEndResizing()
{
    m_isResizingWindow = false;
    if (!isPainting())
        return;
    m_arrDrawedPoints = m_view->paintView->arrDrawedPoints();
    adjustPaintEraseview();
}

} // namespace hazelmark
