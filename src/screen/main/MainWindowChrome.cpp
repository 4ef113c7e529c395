#include "MainWindowChrome.h"

#include "ApplicationDelegate.h"
#include "IMGButton.h"
#include "SaveChangesSheet.h"
#include "Screen.h"
#include "Session.h"
#include "SheetQueue.h"
#include "TitlebarWindow.h"

#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <utility>

namespace hazelmark {

namespace {

using namespace std::chrono_literals;

constexpr int kFirstWidthPoints = 1300;
constexpr auto kHideButtonsDelay = 20ms;

} // namespace

MainWindowChrome::MainWindowChrome(ApplicationDelegate &application, Session &session, TitlebarWindow &window)
    : m_application(application)
    , m_session(session)
    , m_window(window)
{
    // The window's controller comes later with another frame and other limits: those hold.
    const QRect visible = Screen::mainScreen().visibleFrame().toRect();
    window.setFrameSizeLimits(window.minimumFrameSize(), visible.size());
    window.setFrame({visible.topLeft(), QSize(std::min(kFirstWidthPoints, visible.width()), visible.height())});
    QTimer::singleShot(kHideButtonsDelay, this, &MainWindowChrome::hideWindowBtnsAfterDelay);
}

void MainWindowChrome::hideWindowBtnsAfterDelay()
{
    QWindow *window = m_window.windowHandle();
    if (!window)
        return;
    window->setFlag(Qt::FramelessWindowHint);
    connect(window, &QWindow::screenChanged, this, &MainWindowChrome::screenChanged, Qt::UniqueConnection);
    emit screenChanged(window->screen());
}

void MainWindowChrome::btnCloseWindowTapped()
{
    if (m_session.lastExportedImage() || m_application.arraySelectedImagesToProcess().isEmpty()) {
        m_window.closeNow();
        return;
    }
    if (m_windowSaveChanges)
        return;
    m_windowSaveChanges = new SaveChangesSheet(m_application);
    connect(m_windowSaveChanges, &SaveChangesSheet::saveTapped, this, &MainWindowChrome::btnSaveChangesTapped);
    connect(m_windowSaveChanges, &SaveChangesSheet::dontSaveTapped, this, &MainWindowChrome::btnDontSaveChangesTapped);
    connect(m_windowSaveChanges, &SaveChangesSheet::cancelTapped, this, &MainWindowChrome::btnCancelChangesTapped);
    SheetQueue::forWindow(m_window).present(m_windowSaveChanges);
}

void MainWindowChrome::takeDownSaveChanges()
{
    if (m_windowSaveChanges)
        m_windowSaveChanges->done(QDialog::Accepted);
    m_windowSaveChanges.clear();
    m_window.closeButton()->setChecked(false);
}

void MainWindowChrome::btnSaveChangesTapped()
{
    takeDownSaveChanges();
}

void MainWindowChrome::btnDontSaveChangesTapped()
{
    takeDownSaveChanges();
    if (!std::exchange(m_isExportingWithAddingNewImage, false))
        m_window.closeNow();
}

void MainWindowChrome::btnCancelChangesTapped()
{
    m_isExportingWithAddingNewImage = false;
    takeDownSaveChanges();
}

void MainWindowChrome::btnMinimizeWindowTapped()
{
    m_window.showMinimized();
    m_window.minimizeButton()->setChecked(true);
}

void MainWindowChrome::btnZoomWindowTapped()
{
    if (m_session.isRunningAlgorithm())
        m_window.zoomButton()->setChecked(true);
    else
        m_window.zoom();
}

} // namespace hazelmark
