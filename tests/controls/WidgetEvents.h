#pragma once

#include <QCoreApplication>
#include <QEnterEvent>
#include <QImage>
#include <QWidget>

namespace hazelmark {

/// The pointer's coming and going, without a pointer.
inline void send(QWidget &widget, QEvent::Type type)
{
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QEvent other(type);
    QCoreApplication::sendEvent(&widget, type == QEvent::Enter ? &enter : &other);
}

/// What the widget draws itself, on nothing.
inline QImage drawn(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::RenderFlags());
    return image;
}

} // namespace hazelmark
