#include "DrawTrackingView.h"

#include "NotificationCenter.h"
#include "NotificationNames.h"
#include "PaintView.h"
#include "PointerTracker.h"

#include <QEvent>

namespace hazelmark {

DrawTrackingView::DrawTrackingView(const PaintView &canvas, QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    new PointerTracker(
        *this, [] { NotificationCenter::defaultCenter().post(kNotificationMouseIn); },
        [] { NotificationCenter::defaultCenter().post(kNotificationMouseout); },
        [&canvas] { return canvas.isStrokeUnderWay(); });
}

bool DrawTrackingView::event(QEvent *event)
{
    if (event->type() != QEvent::TouchBegin)
        return QWidget::event(event);
    NotificationCenter::defaultCenter().post(kNotificationMouseIn);
    // Not accepted: it comes again as mouse events, to the view that lies on top by then.
    event->ignore();
    return false;
}

} // namespace hazelmark
