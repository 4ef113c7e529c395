#include "ImageButton.h"

#include "AccessibleRole.h"
#include "IMGButton.h"

namespace hazelmark {

IMGButton *imageButton(const char *objectName, const QString &off, const QString &on, QWidget *parent)
{
    const QString disabled = QStringLiteral("-disabled");
    auto *button = new IMGButton(parent);
    setAccessibleRole(*button, QAccessible::Button);
    button->setObjectName(QLatin1String(objectName));
    button->setEndCaps({.off = off,
                        .offDisabled = off + disabled,
                        .on = on,
                        .onDisabled = on + disabled,
                        .hover = QStringLiteral("button-hover")});
    button->setFixedSize(button->sizeHint());
    return button;
}

} // namespace hazelmark
