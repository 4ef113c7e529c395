#include "MainWinController.h"

#include "Bundle.h"
#include "NotificationNames.h"
#include "Screen.h"
#include "TitlebarWindow.h"

#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace hazelmark {

MainWinController::MainWinController(ScreenFactory makeMainScreen)
    : m_makeMainScreen(std::move(makeMainScreen))
    , m_windowMain(std::make_unique<TitlebarWindow>())
    , m_mainScreenView(new QWidget)
{
    m_windowMain->setWindowTitle(Bundle::infoDictionary().value(QStringLiteral("CFBundleName")).toString());
    auto *layout = new QVBoxLayout(m_mainScreenView);
    layout->setContentsMargins({});
    m_windowMain->setContentView(m_mainScreenView);
    m_endOfResize.setSingleShot(true);
    m_endOfResize.setInterval(kEndOfResizeMilliseconds);
    connect(&m_endOfResize, &QTimer::timeout, this, &MainWinController::windowDidEndLiveResize);
    changeViewController(0);
}

MainWinController::~MainWinController()
{
    // The main screen goes first, as long as its view is there.
    m_windowMain->disconnect(this);
    m_mainScreenViewController.reset();
}

void MainWinController::showWindow()
{
    m_windowMain->show();
    m_windowMain->raise();
    m_windowMain->activateWindow();
}

void MainWinController::changeViewController(int index)
{
    if (m_myCurrentViewController)
        m_myCurrentViewController->view()->setParent(nullptr);
    if (index == 0) {
        if (!m_mainScreenViewController)
            m_mainScreenViewController = m_makeMainScreen();
        m_myCurrentViewController = m_mainScreenViewController.get();
        m_myCurrentViewController->setTitle(QStringLiteral("MainScreenVC"));
    }
    QWidget *view = m_myCurrentViewController->view();
    m_mainScreenView->layout()->addWidget(view);
    view->setGeometry(QRect(QPoint(), m_mainScreenView->size()));
    view->show();
    TitlebarWindow::setMovesWindow(*view);
    m_myCurrentViewController->setRepresentedObject(
        static_cast<int>(view->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size()));
    NotificationCenter::defaultCenter().post(kNotificationSetupHeader,
                                             {{kWindowObjectKey, QVariant::fromValue<QObject *>(m_windowMain.get())}});
    setUpWindow();
}

QRectF MainWinController::frameForVisibleSize(QSizeF visible)
{
    // In single precision, as everywhere where sizes of the screen come from.
    constexpr float kShare = 0.9F;
    const auto width = static_cast<float>(visible.width());
    const auto height = static_cast<float>(visible.height());
    return {(1 - kShare) / 2 * width, (1 - kShare) / 2 * height, std::max<float>(kMinimumWidth, kShare * width),
            std::max<float>(kMinimumHeight, kShare * height)};
}

void MainWinController::setUpWindow()
{
    const QSizeF visible = Screen::mainScreen().visibleFrame().size();
    // What the main screen made of the window's size in its own set-up ends here. Limits first: the frame keeps to
    // them.
    m_windowMain->setFrameSizeLimits({kMinimumWidth, kMinimumHeight}, visible.toSize());
    m_windowMain->setFrame(frameForVisibleSize(visible).translated(Screen::mainScreen().origin()).toRect());
    m_windowMain->disconnect(this); // once the window's delegate, however often the view is changed
    connect(m_windowMain.get(), &TitlebarWindow::didResize, this, &MainWinController::windowDidResize);
    connect(m_windowMain.get(), &TitlebarWindow::didEnterFullScreen, this,
            &MainWinController::windowDidEnterFullScreen);
    connect(m_windowMain.get(), &TitlebarWindow::didExitFullScreen, this, &MainWinController::windowDidExitFullScreen);
}

void MainWinController::windowDidResize()
{
    NotificationCenter::defaultCenter().post(kNotificationWindowResized);
    if (m_windowMain->isVisible()) // before that nobody resizes it
        m_endOfResize.start();
}

void MainWinController::windowDidEndLiveResize()
{
    NotificationCenter::defaultCenter().post(kNotificationWindowEndResizing);
}

// The state changes before the size does: the end is told once the last size is laid out.
void MainWinController::windowDidEnterFullScreen()
{
    m_endOfResize.start();
}
void MainWinController::windowDidExitFullScreen()
{
    m_endOfResize.start();
}

} // namespace hazelmark
