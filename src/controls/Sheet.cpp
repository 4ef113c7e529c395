#include "Sheet.h"

#include "Compositor.h"
#include "Theme.h"

#include <QPainter>

namespace hazelmark {

namespace {

constexpr qreal kRadius = 8;

} // namespace

Sheet::Sheet()
    : QDialog(nullptr, Qt::Dialog | Qt::FramelessWindowHint)
{
    if (Compositor::current().isComposited())
        setAttribute(Qt::WA_TranslucentBackground);
}

void Sheet::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    const QWidget *window = parentWidget();
    if (!window)
        return;
    adjustSize();
    const QPoint place((window->width() - width()) / 2, theme::kTitleBarHeight + theme::kMargin);
    move(window->mapToGlobal(place));
}

void Sheet::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isRound = testAttribute(Qt::WA_TranslucentBackground);
    painter.setBrush(theme::kPanel);
    painter.setPen(theme::kDisabledText);
    const qreal radius = isRound ? kRadius : 0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
}

} // namespace hazelmark
