#include "DisclosureButton.h"

#include "AccessibleRole.h"
#include "FocusRing.h"
#include "ImageCatalog.h"
#include "Theme.h"

#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace hazelmark {

namespace {

constexpr int kArrowSize = 20;
constexpr int kTextLeft = kArrowSize + theme::kGrid;
constexpr int kFlags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap;
constexpr int kPreferredWidth = 200;

} // namespace

DisclosureButton::DisclosureButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setCheckable(true);
    setAccessibleRole(*this, QAccessible::ButtonDropDown);
    connect(this, &QAbstractButton::toggled, this, [this] {
        QAccessible::State changed;
        changed.expanded = changed.collapsed = true;
        QAccessibleStateChangeEvent event(this, changed);
        QAccessible::updateAccessibility(&event);
    });
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAttribute(Qt::WA_Hover);
}

QFont DisclosureButton::textFont() const
{
    return theme::systemFont(theme::kSmallTextSize);
}

int DisclosureButton::heightForWidth(int width) const
{
    const QRect text =
        QFontMetrics(textFont()).boundingRect(QRect(0, 0, width - kTextLeft, 1000), kFlags, this->text());
    return std::max(kArrowSize, text.height()) + theme::kSpacing;
}

QSize DisclosureButton::sizeHint() const
{
    return {kPreferredWidth, heightForWidth(kPreferredWidth)};
}

void DisclosureButton::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void DisclosureButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPixmap arrow =
        ImageCatalog::imageNamed(isChecked() ? QStringLiteral("chevron-down") : QStringLiteral("chevron-right"),
                                 QSizeF(kArrowSize, kArrowSize), devicePixelRatioF());
    painter.setOpacity(underMouse() ? 1.0 : 0.75);
    painter.drawPixmap(QPointF(0, (height() - kArrowSize) / 2.0), arrow);
    painter.setOpacity(1.0);
    painter.setFont(textFont());
    painter.setPen(underMouse() ? theme::kText : theme::kQuietText);
    painter.drawText(QRect(kTextLeft, 0, width() - kTextLeft, height()), kFlags, text());
    drawFocusRing(painter, *this);
}

} // namespace hazelmark
