#pragma once

#include "Theme.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QMetaEnum>
#include <QPalette>
#include <QPushButton>
#include <QStringList>
#include <QWidget>

#include <algorithm>

namespace hazelmark {

/// What stands where in `root`, row by row as a person sees it: "ABOVE: LEFT name BETWEEN name RIGHT", each in points,
/// and at the end what is free below. A tilde stands for room that is left over, or that the font decides on; a widget
/// whose size is given is followed by it, words that are larger or smaller than others by @ and their size, bold ones
/// by a star, quiet ones by an apostrophe, labels that wrap by a slash, those of plain text by a cross.
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
        const auto *label = qobject_cast<const QLabel *>(widget);
        if (label) {
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
        if (!text.isEmpty() && widget->font().pixelSize() != theme::kTextSize)
            name += u'@' + QString::number(widget->font().pixelSize());
        name += QLatin1String(widget->font().bold() ? "*" : "");
        name += QLatin1String(widget->palette().color(QPalette::WindowText) == theme::kQuietText ? "'" : "");
        name += QLatin1String(label && label->wordWrap() ? "/" : "");
        name += QLatin1String(label && label->textFormat() == Qt::PlainText ? "#" : "");
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

/// What keyboard, pointer and screen reader find in `root`: "name: ROLE accessible name [description] (tool tip)" of
/// each widget that has something to tell beside its text; then t or s where it takes the focus by Tab or by anything,
/// ^ where the pointer is a hand, - where it is disabled, ! for what Return presses, o for what is read only, x for
/// what is on, v for what is unfolded. Two that tell the same share it.
inline QString toldOf(QWidget &root)
{
    QStringList found;
    QList<QWidget *> widgets = root.findChildren<QWidget *>();
    widgets.prepend(&root);
    for (QWidget *widget : std::as_const(widgets)) {
        if (!widget->isVisibleTo(&root) || widget->objectName().startsWith(QStringLiteral("qt_")))
            continue;
        QAccessibleInterface *told = QAccessible::queryAccessibleInterface(widget);
        const auto *button = qobject_cast<const QPushButton *>(widget);
        QString flags;
        flags += QLatin1String(widget->focusPolicy() == Qt::TabFocus ? "t" : "");
        flags += QLatin1String(widget->focusPolicy() == Qt::StrongFocus ? "s" : "");
        flags += QLatin1String(widget->cursor().shape() == Qt::PointingHandCursor ? "^" : "");
        flags += QLatin1String(widget->isEnabledTo(&root) ? "" : "-");
        flags += QLatin1String(told->role() == QAccessible::EditableText && told->state().readOnly ? "o" : "");
        flags += QLatin1String(told->state().checked ? "x" : told->state().expanded ? "v" : "");
        flags += QLatin1String(button && button->isDefault() ? "!" : "");
        QString line = QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(told->role()));
        line +=
            u' ' + (told->role() == QAccessible::StaticText ? widget->accessibleName() : told->text(QAccessible::Name));
        if (!widget->accessibleDescription().isEmpty())
            line += QStringLiteral(" [%1]").arg(widget->accessibleDescription());
        if (!widget->toolTip().isEmpty() && widget->toolTip() != told->text(QAccessible::Name))
            line += QStringLiteral(" (%1)").arg(widget->toolTip());
        line = line.trimmed() + u' ' + flags;
        if (QStringList{u"Client"_qs, u"StaticText"_qs, u"Border"_qs}.contains(line.trimmed()))
            continue;
        QString name = widget->objectName();
        if (name.isEmpty())
            name = QString::fromLatin1(widget->metaObject()->className()).section(u':', -1);
        if (!found.isEmpty() && found.last().endsWith(u": "_qs + line.trimmed()))
            found.last().prepend(name + u", "_qs);
        else
            found << name + u": "_qs + line.trimmed();
    }
    return found.join(u"; "_qs).remove(QStringLiteral(" %@"));
}

} // namespace hazelmark
