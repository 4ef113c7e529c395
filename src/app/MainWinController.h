#pragma once

#include "NotificationCenter.h"
#include "ViewController.h"

#include <QObject>
#include <QRectF>
#include <QTimer>

#include <functional>
#include <memory>

namespace hazelmark {

class TitlebarWindow;

/// The controller of the main window: makes it, puts the main screen into it, and tells the main screen of its size.
class MainWinController : public QObject
{
    Q_OBJECT

public:
    /// Makes the main screen's controller; called once.
    using ScreenFactory = std::function<std::unique_ptr<ViewController>()>;

    /// In points.
    static constexpr int kMinimumWidth = 1220;
    static constexpr int kMinimumHeight = 700;
    /// The size has come to rest when no resize event came for so long.
    static constexpr int kEndOfResizeMilliseconds = 200;

    explicit MainWinController(ScreenFactory makeMainScreen);
    ~MainWinController() override;

    /// Puts the view of the controller with `index` into the window: 0 is the main screen, and there is no other.
    void changeViewController(int index);
    void showWindow();

    ViewController *viewController() const { return m_myCurrentViewController; }
    TitlebarWindow *windowMain() const { return m_windowMain.get(); }
    QWidget *mainScreenView() const { return m_mainScreenView; }

    /// The main window's frame at its first set-up, from the size of the screen's visible frame, both in points. It
    /// counts from the main screen's top left corner, wherever on the desktop that is: the visible frame's own origin
    /// is not added, and y is down, so that the title strip is on the screen.
    static QRectF frameForVisibleSize(QSizeF visible);

private:
    void setUpWindow();
    void windowDidResize();
    void windowDidEndLiveResize();
    void windowDidEnterFullScreen();
    void windowDidExitFullScreen();

    ScreenFactory m_makeMainScreen;
    std::unique_ptr<ViewController> m_mainScreenViewController;
    ViewController *m_myCurrentViewController = nullptr;
    std::unique_ptr<TitlebarWindow> m_windowMain;
    QWidget *m_mainScreenView; ///< the window owns it
    QTimer m_endOfResize;
};

} // namespace hazelmark
