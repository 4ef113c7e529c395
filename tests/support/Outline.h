#pragma once

#include "Theme.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QPalette>
#include <QStringList>
#include <QWidget>

#include <algorithm>

namespace hazelmark {

/// What stands where in `root`, row by row as a person sees it: "ABOVE: LEFT name BETWEEN name RIGHT", each in points,
/// and at the end what is free below. A tilde stands for room that is left over, or that the font decides on; a widget
/// whose size is given is followed by it.
inline QString outlineOf(const QWidget &root)
{
    constexpr int kLargest = 32;
    struct Part
    {
        QRect place;
        QString name;
    };
    QList<Part> found;
    for (const QWidget *widget : root.findChildren<QWidget *>()) {
        const auto parts = widget->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
        const bool isWhole = qobject_cast<const QComboBox *>(widget) ||
                             std::ranges::none_of(parts, [&](auto *part) { return part->isVisibleTo(&root); });
        if (!isWhole || !widget->isVisibleTo(&root) || qobject_cast<const QComboBox *>(widget->parent()))
            continue;
        QString name = widget->objectName();
        QString text;
        QSize size = widget->minimumSize() == widget->maximumSize() ? widget->size() : QSize();
        if (const auto *label = qobject_cast<const QLabel *>(widget)) {
            text = label->text();
            size = label->pixmap().deviceIndependentSize().toSize();
        } else if (const auto *button = qobject_cast<const QAbstractButton *>(widget)) {
            text = button->text();
        }
        if (name.isEmpty())
            name = text.isEmpty() ? QString::fromLatin1(widget->metaObject()->className()).section(u':', -1)
                                  : text.section(u' ', 0, 0);
        if (text.isEmpty() && !size.isEmpty())
            name += QStringLiteral("[%1x%2]").arg(size.width()).arg(size.height());
        name += QLatin1String(widget->font().bold() ? "*" : "");
        name += QLatin1String(widget->palette().color(QPalette::WindowText) == theme::kQuietText ? "'" : "");
        found.append({{widget->mapTo(&root, QPoint()), widget->size()}, name});
    }
    std::ranges::stable_sort(found, {}, [](const Part &part) { return part.place.center().y(); });
    QStringList rows;
    const auto room = [](int points) {
        return points >= 0 && points <= kLargest ? QString::number(points) : QStringLiteral("~");
    };
    int bottom = 0;
    for (auto first = found.begin(); first != found.end();) {
        const int middle = first->place.center().y();
        const auto end = std::find_if(first, found.end(), [&](const Part &part) { return part.place.top() > middle; });
        std::ranges::sort(first, end, {}, [](const Part &part) { return part.place.left(); });
        int top = first->place.top(), right = 0, lowest = bottom;
        QString row;
        for (; first != end; ++first) {
            row += room(first->place.left() - right) + u' ' + first->name + u' ';
            right = first->place.right() + 1;
            top = std::min(top, first->place.top());
            lowest = std::max(lowest, first->place.bottom() + 1);
        }
        rows.append(room(top - bottom) + QStringLiteral(": ") + row + room(root.width() - right));
        bottom = lowest;
    }
    rows.append(room(root.height() - bottom));
    return rows.join(u'\n');
}

} // namespace hazelmark
