#include "CalloutWindow.h"

#include "Compositor.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace hazelmark {

namespace {

constexpr int kArrowLength = 8;
constexpr int kArrowHalfWidth = 8;
constexpr int kRadius = 6;
constexpr int kInset = theme::kSpacing; ///< from the outline to the content
constexpr int kLongestLine = 420;
constexpr std::chrono::seconds kReadingTime{8};

Qt::Edge opposite(Qt::Edge edge)
{
    switch (edge) {
    case Qt::TopEdge:
        return Qt::BottomEdge;
    case Qt::BottomEdge:
        return Qt::TopEdge;
    case Qt::LeftEdge:
        return Qt::RightEdge;
    case Qt::RightEdge:
        return Qt::LeftEdge;
    }
    Q_UNREACHABLE();
}

bool isVertical(Qt::Edge edge)
{
    return edge == Qt::TopEdge || edge == Qt::BottomEdge;
}

/// The top-left corner of a callout of `size` that stands at `edge` of `anchor`.
QPoint placeAt(const QRect &anchor, QSize size, Qt::Edge edge)
{
    switch (edge) {
    case Qt::TopEdge:
        return {anchor.center().x() - size.width() / 2, anchor.top() - size.height()};
    case Qt::BottomEdge:
        return {anchor.center().x() - size.width() / 2, anchor.bottom() + 1};
    case Qt::LeftEdge:
        return {anchor.left() - size.width(), anchor.center().y() - size.height() / 2};
    case Qt::RightEdge:
        return {anchor.right() + 1, anchor.center().y() - size.height() / 2};
    }
    Q_UNREACHABLE();
}

} // namespace

CalloutWindow::CalloutWindow(QWidget *content, QWidget *parent)
    : CalloutWindow(content, parent, Qt::Popup)
{
}

CalloutWindow *CalloutWindow::saying(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText); // file names may hold anything
    label->setWordWrap(label->sizeHint().width() > kLongestLine);
    if (label->wordWrap())
        label->setFixedSize(kLongestLine, label->heightForWidth(kLongestLine));
    // Not a pop-up: that would close at a press elsewhere, and take the pointer from a drag that goes on.
    auto *callout = new CalloutWindow(label, parent, Qt::ToolTip);
    callout->m_takesFocus = false;
    callout->setAttribute(Qt::WA_ShowWithoutActivating);
    callout->setAttribute(Qt::WA_TransparentForMouseEvents);
    callout->setAttribute(Qt::WA_DeleteOnClose);
    callout->setAccessibleName(text);
    QTimer::singleShot(kReadingTime, callout, &QWidget::close);
    return callout;
}

CalloutWindow::CalloutWindow(QWidget *content, QWidget *parent, Qt::WindowFlags flags)
    : QWidget(parent, flags | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
    , m_content(content)
{
    content->setParent(this);
    if (Compositor::current().isComposited())
        setAttribute(Qt::WA_TranslucentBackground);
    layOut(Qt::TopEdge);
}

void CalloutWindow::layOut(Qt::Edge arrowSide)
{
    m_arrowSide = arrowSide;
    QMargins margins(kInset, kInset, kInset, kInset);
    if (arrowSide == Qt::TopEdge)
        margins += QMargins(0, kArrowLength, 0, 0);
    if (arrowSide == Qt::BottomEdge)
        margins += QMargins(0, 0, 0, kArrowLength);
    if (arrowSide == Qt::LeftEdge)
        margins += QMargins(kArrowLength, 0, 0, 0);
    if (arrowSide == Qt::RightEdge)
        margins += QMargins(0, 0, kArrowLength, 0);
    const QSize size = m_content->sizeHint().expandedTo(m_content->minimumSize());
    setFixedSize(size.grownBy(margins));
    m_content->setGeometry(QRect(QPoint(margins.left(), margins.top()), size));
}

void CalloutWindow::showRelativeTo(const QWidget &anchor, Qt::Edge edge)
{
    const QRect anchorRect(anchor.mapToGlobal(QPoint()), anchor.size());
    const QRect screen = anchor.screen()->availableGeometry();
    layOut(opposite(edge));
    const QRect wanted(placeAt(anchorRect, size(), edge), size());
    const bool fits = isVertical(edge) ? wanted.top() >= screen.top() && wanted.bottom() <= screen.bottom()
                                       : wanted.left() >= screen.left() && wanted.right() <= screen.right();
    if (!fits) {
        edge = opposite(edge);
        layOut(opposite(edge));
    }
    QPoint corner = placeAt(anchorRect, size(), edge);
    corner.setX(std::clamp(corner.x(), screen.left(), std::max(screen.left(), screen.right() + 1 - width())));
    corner.setY(std::clamp(corner.y(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - height())));
    const int length = isVertical(edge) ? width() : height();
    const int middle = isVertical(edge) ? anchorRect.center().x() - corner.x() : anchorRect.center().y() - corner.y();
    m_arrowPosition = std::clamp(middle, kRadius + kArrowHalfWidth, length - kRadius - kArrowHalfWidth);
    if (!testAttribute(Qt::WA_TranslucentBackground))
        setMask(QRegion(outline().toFillPolygon().toPolygon()));
    move(corner);
    show();
    if (m_takesFocus)
        m_content->setFocus(Qt::PopupFocusReason);
}

QPainterPath CalloutWindow::outline() const
{
    QRectF body = rect();
    QPolygonF arrow;
    const qreal p = m_arrowPosition;
    switch (m_arrowSide) {
    case Qt::TopEdge:
        body.setTop(kArrowLength);
        arrow << QPointF(p - kArrowHalfWidth, body.top()) << QPointF(p, 0) << QPointF(p + kArrowHalfWidth, body.top());
        break;
    case Qt::BottomEdge:
        body.setBottom(body.bottom() - kArrowLength);
        arrow << QPointF(p - kArrowHalfWidth, body.bottom()) << QPointF(p, height())
              << QPointF(p + kArrowHalfWidth, body.bottom());
        break;
    case Qt::LeftEdge:
        body.setLeft(kArrowLength);
        arrow << QPointF(body.left(), p - kArrowHalfWidth) << QPointF(0, p)
              << QPointF(body.left(), p + kArrowHalfWidth);
        break;
    case Qt::RightEdge:
        body.setRight(body.right() - kArrowLength);
        arrow << QPointF(body.right(), p - kArrowHalfWidth) << QPointF(width(), p)
              << QPointF(body.right(), p + kArrowHalfWidth);
        break;
    }
    QPainterPath path;
    path.addRoundedRect(body, kRadius, kRadius);
    QPainterPath tip;
    tip.addPolygon(arrow);
    tip.closeSubpath();
    return path.united(tip);
}

void CalloutWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void CalloutWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    emit closed();
}

void CalloutWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline(), theme::kPanel);
    painter.setClipPath(outline());
    painter.strokePath(outline(), QPen(theme::kHairline, 2)); // its outer half is clipped away
}

} // namespace hazelmark
