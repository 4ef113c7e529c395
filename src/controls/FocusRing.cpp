#include "FocusRing.h"

#include "Theme.h"

#include <QPainter>
#include <QWidget>

namespace hazelmark {

bool showsKeyboardFocus(const QWidget &control)
{
    return control.hasFocus() && control.isActiveWindow() &&
           control.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void drawFocusRing(QPainter &painter, const QWidget &control)
{
    constexpr qreal kRadius = 4;
    if (!showsKeyboardFocus(control))
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme::kFocus, theme::kFocusRingWidth));
    const qreal inset = theme::kFocusRingWidth / 2.0;
    painter.drawRoundedRect(QRectF(control.rect()).adjusted(inset, inset, -inset, -inset), kRadius, kRadius);
}

} // namespace hazelmark
