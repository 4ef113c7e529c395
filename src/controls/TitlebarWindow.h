#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

class QMenuBar;
class QShortcut;

namespace hazelmark {

class FrameEdge;
class IMGButton;

/// A window without the desktop's frame, whose content reaches up to its top edge: the title strip is the content's
/// uppermost part, on which the window lays its own four buttons and its menu bar.
///
/// It is moved by the background of its content only (see `setMovesWindow`) and resized at its edges, both by the
/// window system, so that snapping and tiling work. Where the platform composites it has round corners, and a shadow
/// where the window manager takes notice of one; all frames and sizes here are without the shadow, in points.
class TitlebarWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kCornerRadius = 5;

    /// What the buttons, and the desktop's own ways to the same ends, do. At first they are the window's own:
    /// `closeNow`, `showMinimized`, `zoom`, `toggleFullScreen`.
    struct Actions
    {
        std::function<void()> close; ///< every way of closing asks here first; it calls `closeNow` or does not
        std::function<void()> minimize;
        std::function<void()> zoom;
        std::function<void()> fullScreen;
    };

    explicit TitlebarWindow(QWidget *parent = nullptr);
    ~TitlebarWindow() override;

    void setContentView(QWidget *view); ///< the window owns it; it fills the frame, behind buttons and menu bar
    QWidget *contentView() const { return m_content; }
    void setMenuBar(QMenuBar *menuBar);      ///< the window owns it
    void setActions(const Actions &actions); ///< those that are empty stay as they were

    IMGButton *closeButton() const { return m_closeButton; }
    IMGButton *minimizeButton() const { return m_minimizeButton; }
    IMGButton *zoomButton() const { return m_zoomButton; }
    IMGButton *fullScreenButton() const { return m_fullScreenButton; }
    /// Tool tips and accessible names.
    void setButtonNames(const QString &close, const QString &minimize, const QString &zoom, const QString &fullScreen);

    /// Marks `view` as background: a press on it, not on a child of it, takes hold of the window.
    static void setMovesWindow(QWidget &view, bool moves = true);

    QRect frame() const; ///< in global coordinates
    void setFrame(const QRect &frame);
    /// The maximum is lifted while the window is maximised or full screen. Where they contradict each other the
    /// minimum holds.
    void setFrameSizeLimits(QSize minimum, QSize maximum);
    QSize minimumFrameSize() const { return m_minimumSize; }
    QSize maximumFrameSize() const { return m_maximumSize; }

    void closeNow();
    void zoom(); ///< to the largest size and back
    void toggleFullScreen();

signals:
    void didResize();
    void didEnterFullScreen();
    void didExitFullScreen();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void makeButtons();
    bool fillsScreen() const { return windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen); }
    QMargins shadowMargins() const;
    QRect frameRect() const;
    bool isBackground(const QPoint &point) const;
    void applySizeLimits(bool lifted);
    void layOut();
    void tellFrameExtents();

    const bool m_composited;
    const bool m_drawsShadow;
    QPointer<QWidget> m_content;
    QPointer<QMenuBar> m_menuBar;
    IMGButton *m_closeButton = nullptr;
    IMGButton *m_minimizeButton = nullptr;
    IMGButton *m_zoomButton = nullptr;
    IMGButton *m_fullScreenButton = nullptr;
    QShortcut *m_leaveFullScreenKey = nullptr;
    std::vector<FrameEdge *> m_edges;
    Actions m_actions;
    QSize m_minimumSize{0, 0};
    QSize m_maximumSize{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    bool m_closing = false; ///< the close event that comes, or is asking, is to be accepted
    bool m_asking = false;
    bool m_wasFullScreen = false;
    bool m_pressed = false;
    QPoint m_pressPoint;
};

} // namespace hazelmark
