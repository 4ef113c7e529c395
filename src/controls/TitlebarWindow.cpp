#include "TitlebarWindow.h"

#include "AccessibleRole.h"
#include "Compositor.h"
#include "FrameEdge.h"
#include "IMGButton.h"
#include "SheetQueue.h"
#include "Theme.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>
#include <QWindow>

#include <algorithm>
#include <array>

namespace hazelmark {

namespace {

constexpr char kMovesWindow[] = "movesWindow";
constexpr int kShadowReach = 16;
constexpr int kShadowDrop = 3; ///< how much lower than the frame the shadow lies
constexpr int kShadowRingAlpha = 7;
constexpr int kShadowAlphaAtFrame = 78; ///< what the shadow's rings add up to
constexpr int kButtonSpacing = theme::kGrid;
constexpr int kButtonLeftMargin = 7;

constexpr std::array<Qt::Edges::Int, 8> kEdges{Qt::LeftEdge,
                                               Qt::RightEdge,
                                               Qt::TopEdge,
                                               Qt::BottomEdge,
                                               Qt::LeftEdge | Qt::TopEdge,
                                               Qt::RightEdge | Qt::TopEdge,
                                               Qt::LeftEdge | Qt::BottomEdge,
                                               Qt::RightEdge | Qt::BottomEdge};

} // namespace

TitlebarWindow::TitlebarWindow(QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
    , m_composited(Compositor::current().isComposited())
    , m_drawsShadow(Compositor::current().acceptsFrameExtents())
    , m_actions{[this] { closeNow(); }, [this] { showMinimized(); }, [this] { zoom(); }, [this] { toggleFullScreen(); }}
{
    if (m_composited)
        setAttribute(Qt::WA_TranslucentBackground);
    setAccessibleRole(*this, QAccessible::Window);
    makeButtons();
    for (const auto edges : kEdges)
        m_edges.push_back(new FrameEdge(Qt::Edges(edges), *this));
}

TitlebarWindow::~TitlebarWindow() = default;

void TitlebarWindow::makeButtons()
{
    const auto make = [this](const QString &name, std::function<void()> Actions::*action) {
        auto *button = new IMGButton(this);
        setAccessibleRole(*button, QAccessible::Button);
        const QString press = name + QStringLiteral("-press");
        button->setEndCaps({.off = name + QStringLiteral("-normal"),
                            .offDisabled = press,
                            .on = press,
                            .onDisabled = press,
                            .hover = name + QStringLiteral("-hover")});
        connect(button, &IMGButton::clicked, this, [this, action] { (m_actions.*action)(); });
        // It pushes; its on state would only linger. What asks before the window closes leaves it on meanwhile.
        connect(button, &IMGButton::clickOver, this, [this, button] {
            button->setChecked(button == m_closeButton && SheetQueue::forWindow(*this).current());
        });
        return button;
    };
    m_closeButton = make(QStringLiteral("close"), &Actions::close);
    m_minimizeButton = make(QStringLiteral("min"), &Actions::minimize);
    m_zoomButton = make(QStringLiteral("max"), &Actions::zoom);
    m_fullScreenButton = make(QStringLiteral("full"), &Actions::fullScreen);
    auto *fullScreenKey = new QShortcut(QKeySequence(Qt::Key_F11), this);
    connect(fullScreenKey, &QShortcut::activated, this, [this] { m_actions.fullScreen(); });
    m_leaveFullScreenKey = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    m_leaveFullScreenKey->setEnabled(false);
    connect(m_leaveFullScreenKey, &QShortcut::activated, this, [this] { m_actions.fullScreen(); });
}

void TitlebarWindow::setActions(const Actions &actions)
{
    for (const auto action : {&Actions::close, &Actions::minimize, &Actions::zoom, &Actions::fullScreen}) {
        if (actions.*action)
            m_actions.*action = actions.*action;
    }
}

void TitlebarWindow::setButtonNames(const QString &close, const QString &minimize, const QString &zoom,
                                    const QString &fullScreen)
{
    const auto name = [](IMGButton *button, const QString &text) {
        button->setToolTip(text);
        button->setAccessibleName(text);
    };
    name(m_closeButton, close);
    name(m_minimizeButton, minimize);
    name(m_zoomButton, zoom);
    name(m_fullScreenButton, fullScreen);
    m_fullScreenButton->setToolTip(fullScreen + QStringLiteral(" (F11)"));
}

void TitlebarWindow::setContentView(QWidget *view)
{
    if (m_content && m_content != view)
        delete m_content.data();
    m_content = view;
    view->setParent(this);
    setMovesWindow(*view);
    view->lower();
    view->show();
    layOut();
}

void TitlebarWindow::setMenuBar(QMenuBar *menuBar)
{
    if (m_menuBar && m_menuBar != menuBar)
        delete m_menuBar.data();
    m_menuBar = menuBar;
    menuBar->setParent(this);
    menuBar->show();
    layOut();
}

void TitlebarWindow::setMovesWindow(QWidget &view, bool moves)
{
    view.setProperty(kMovesWindow, moves);
}

QMargins TitlebarWindow::shadowMargins() const
{
    return m_drawsShadow && !fillsScreen() ? QMargins(kShadowReach, kShadowReach, kShadowReach, kShadowReach)
                                           : QMargins();
}

QRect TitlebarWindow::frameRect() const
{
    return rect().marginsRemoved(shadowMargins());
}

QRect TitlebarWindow::frame() const
{
    return geometry().marginsRemoved(shadowMargins());
}

void TitlebarWindow::setFrame(const QRect &frame)
{
    setGeometry(frame.marginsAdded(shadowMargins()));
}

void TitlebarWindow::setFrameSizeLimits(QSize minimum, QSize maximum)
{
    m_minimumSize = minimum;
    m_maximumSize = maximum;
    applySizeLimits(fillsScreen());
}

void TitlebarWindow::applySizeLimits(bool lifted)
{
    const QMargins shadow = shadowMargins();
    const QSize most(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    setMinimumSize(m_minimumSize.grownBy(shadow).boundedTo(most));
    // Written as it is even when it lies below the minimum, which wins then.
    setMaximumSize(lifted ? most : m_maximumSize.grownBy(shadow).boundedTo(most));
}

void TitlebarWindow::closeNow()
{
    m_closing = true;
    if (!m_asking) // else the event that asks is on its way already
        close();
}

void TitlebarWindow::zoom()
{
    applySizeLimits(true); // window managers do not maximise what may not grow
    setWindowState(windowState() ^ Qt::WindowMaximized);
}

void TitlebarWindow::toggleFullScreen()
{
    applySizeLimits(true);
    setWindowState(windowState() ^ Qt::WindowFullScreen);
}

void TitlebarWindow::closeEvent(QCloseEvent *event)
{
    if (!m_closing) {
        m_asking = true;
        m_actions.close();
        m_asking = false;
    }
    event->setAccepted(m_closing);
    m_closing = false;
}

bool TitlebarWindow::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) // the menu bar has other titles
        layOut();
    return QWidget::event(event);
}

void TitlebarWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    applySizeLimits(fillsScreen());
    tellFrameExtents();
    layOut();
    if (isFullScreen() != m_wasFullScreen) {
        m_wasFullScreen = isFullScreen();
        m_leaveFullScreenKey->setEnabled(m_wasFullScreen);
        if (m_wasFullScreen)
            emit didEnterFullScreen();
        else
            emit didExitFullScreen();
    }
}

void TitlebarWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!focusWidget())
        setFocus(); // else it would fall to the close button
    tellFrameExtents();
}

void TitlebarWindow::tellFrameExtents()
{
    if (m_drawsShadow && windowHandle())
        Compositor::current().setFrameExtents(winId(), shadowMargins() * devicePixelRatioF());
}

void TitlebarWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOut();
    emit didResize();
}

void TitlebarWindow::layOut()
{
    const QRect frame = frameRect();
    if (m_content)
        m_content->setGeometry(frame);
    int left = frame.left() + kButtonLeftMargin;
    const auto centred = [&](int height) { return frame.top() + (theme::kTitleBarHeight - height) / 2; };
    for (IMGButton *button : {m_closeButton, m_minimizeButton, m_zoomButton, m_fullScreenButton}) {
        button->move(left, centred(button->height()));
        left += button->width() + kButtonSpacing;
    }
    if (m_menuBar) {
        const QSize size = m_menuBar->sizeHint();
        m_menuBar->setGeometry(left + theme::kSpacing, centred(size.height()), size.width(), size.height());
    }
    const bool roundCorners = m_composited && !fillsScreen();
    const QColor shadowAtFrame(0, 0, 0, shadowMargins().isNull() ? 0 : kShadowAlphaAtFrame);
    for (FrameEdge *edge : m_edges) {
        edge->setVisible(!fillsScreen());
        edge->setCorner(roundCorners ? kCornerRadius : 0, shadowAtFrame);
        edge->place(frame, shadowMargins().left());
    }
}

bool TitlebarWindow::isBackground(const QPoint &point) const
{
    const QWidget *view = childAt(point);
    return view && view->property(kMovesWindow).toBool();
}

void TitlebarWindow::mousePressEvent(QMouseEvent *event)
{
    // Reached by presses that no view took. The movement starts with the pointer's: a double click is none.
    m_pressed = event->button() == Qt::LeftButton && isBackground(event->position().toPoint());
    m_pressPoint = event->position().toPoint();
}

void TitlebarWindow::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint way = event->position().toPoint() - m_pressPoint;
    if (!m_pressed || way.manhattanLength() < QApplication::startDragDistance() || isFullScreen())
        return;
    m_pressed = false; // the window system has the pointer from here on
    if (windowHandle())
        windowHandle()->startSystemMove();
}

void TitlebarWindow::mouseReleaseEvent(QMouseEvent *)
{
    m_pressed = false;
}

void TitlebarWindow::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QPoint point = event->position().toPoint();
    const bool onStrip = point.y() < frameRect().top() + theme::kTitleBarHeight;
    if (event->button() == Qt::LeftButton && onStrip && isBackground(point))
        m_actions.zoom();
}

void TitlebarWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF frame = frameRect();
    if (!m_composited) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!shadowMargins().isNull()) {
        // Rings of little opacity, the outermost first: they add up to a soft shadow that is darkest at the frame.
        painter.setBrush(QColor(0, 0, 0, kShadowRingAlpha));
        for (int reach = kShadowReach - kShadowDrop; reach > 0; --reach) {
            const QRectF ring = frame.adjusted(-reach, -reach, reach, reach).translated(0, kShadowDrop);
            painter.drawRoundedRect(ring, kCornerRadius + reach, kCornerRadius + reach);
        }
    }
    painter.setBrush(Qt::black);
    const qreal radius = fillsScreen() ? 0 : kCornerRadius;
    painter.drawRoundedRect(frame, radius, radius);
}

} // namespace hazelmark
