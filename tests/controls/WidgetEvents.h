#pragma once

#include <QCoreApplication>
#include <QEnterEvent>
#include <QImage>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>

namespace hazelmark {

/// The pointer's coming and going, without a pointer.
inline void send(QWidget &widget, QEvent::Type type)
{
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QEvent other(type);
    QCoreApplication::sendEvent(&widget, type == QEvent::Enter ? &enter : &other);
}

/// Turns the wheel over it, an eighth of a degree a unit.
inline void wheel(QWidget &widget, int angle)
{
    QWheelEvent event(QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), {}, {0, angle}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Gives it the focus as Tab does.
inline void focusByKeyboard(QWidget &widget)
{
    widget.window()->show();
    widget.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&widget));
    widget.window()->setAttribute(Qt::WA_KeyboardFocusChange);
    widget.clearFocus(); // a window that comes to the front hands it to the first that takes it
    widget.setFocus(Qt::TabFocusReason);
}

/// What the widget draws itself, on nothing.
inline QImage drawn(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, {}, {}, QWidget::RenderFlags());
    return image;
}

/// What is seen on a black ground along the row, or the column, that begins at `from`: levels of grey from "0" to "f",
/// each with how many pixels it goes on.
inline std::string profileOf(const QImage &image, QPoint from)
{
    const QPoint step = from.x() == 0 ? QPoint(1, 0) : QPoint(0, 1);
    QString levels;
    for (QPoint at = from; image.rect().contains(at); at += step) {
        const QColor color = image.pixelColor(at);
        levels += QString::number(qGray(color.rgb()) * color.alpha() / 255 / 16, 16);
    }
    QString profile;
    for (qsizetype at = 0, end = 0; at < levels.size(); at = end) {
        while (end < levels.size() && levels[end] == levels[at])
            ++end;
        profile += QStringLiteral("%1x%2 ").arg(levels[at]).arg(end - at);
    }
    return profile.trimmed().toStdString();
}

} // namespace hazelmark
