#include "CalloutWindow.h"

#include "Compositor.h"
#include "Theme.h"

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

/// The top-left corner of a callout of `size` below or above `anchor`.
QPoint placeAt(const QRect &anchor, QSize size, bool isBelow)
{
    return {anchor.center().x() - size.width() / 2, isBelow ? anchor.bottom() + 1 : anchor.top() - size.height()};
}

} // namespace

CalloutWindow::CalloutWindow(const QString &text, QWidget *parent)
    // Not a pop-up: that would close at a press elsewhere, and take the pointer from a drag that goes on.
    : QWidget(parent, Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint)
{
    auto *label = new QLabel(text, this);
    label->setTextFormat(Qt::PlainText); // file names may hold anything
    label->setWordWrap(label->sizeHint().width() > kLongestLine);
    if (label->wordWrap())
        label->setFixedSize(kLongestLine, label->heightForWidth(kLongestLine));
    m_content = label;
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground, Compositor::current().isComposited());
    setAccessibleName(text);
    QTimer::singleShot(kReadingTime, this, &QWidget::close);
}

void CalloutWindow::layOut(bool isBelow)
{
    m_isBelow = isBelow;
    const QMargins margins(kInset, kInset + (isBelow ? kArrowLength : 0), kInset,
                           kInset + (isBelow ? 0 : kArrowLength));
    const QSize size = m_content->sizeHint().expandedTo(m_content->minimumSize());
    setFixedSize(size.grownBy(margins));
    m_content->setGeometry(QRect(QPoint(margins.left(), margins.top()), size));
}

void CalloutWindow::showBelow(const QWidget &anchor)
{
    const QRect anchorRect(anchor.mapToGlobal(QPoint()), anchor.size());
    const QRect screen = anchor.screen()->availableGeometry();
    layOut(true);
    if (placeAt(anchorRect, size(), true).y() + height() > screen.bottom() + 1)
        layOut(false);
    QPoint corner = placeAt(anchorRect, size(), m_isBelow);
    corner.setX(std::clamp(corner.x(), screen.left(), std::max(screen.left(), screen.right() + 1 - width())));
    corner.setY(std::clamp(corner.y(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - height())));
    m_arrowPosition = std::clamp(anchorRect.center().x() - corner.x(), kRadius + kArrowHalfWidth,
                                 width() - kRadius - kArrowHalfWidth);
    if (!testAttribute(Qt::WA_TranslucentBackground))
        setMask(QRegion(outline().toFillPolygon().toPolygon()));
    move(corner);
    show();
}

QPainterPath CalloutWindow::outline() const
{
    const QRectF body = QRectF(rect()).adjusted(0, m_isBelow ? kArrowLength : 0, 0, m_isBelow ? 0 : -kArrowLength);
    const qreal foot = m_isBelow ? body.top() : body.bottom();
    const qreal p = m_arrowPosition;
    QPainterPath path;
    path.addRoundedRect(body, kRadius, kRadius);
    QPainterPath tip;
    tip.addPolygon(QPolygonF() << QPointF(p - kArrowHalfWidth, foot) << QPointF(p, m_isBelow ? 0 : height())
                               << QPointF(p + kArrowHalfWidth, foot));
    tip.closeSubpath();
    return path.united(tip);
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
