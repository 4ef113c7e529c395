#include "AccessibleRole.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QVariant>

namespace hazelmark {

namespace {

constexpr char kRole[] = "accessibleRole";

class RoleInterface : public QAccessibleWidget
{
public:
    RoleInterface(QWidget &control, QAccessible::Role role)
        : QAccessibleWidget(&control, role)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString text = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Name || !text.isEmpty())
            return text;
        return button() ? button()->text() : QString();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        if (button() && button()->isCheckable() && role() == QAccessible::RadioButton) {
            state.checkable = true;
            state.checked = button()->isChecked();
        }
        if (button() && role() == QAccessible::ButtonDropDown) {
            state.expandable = true;
            state.expanded = button()->isChecked();
            state.collapsed = !button()->isChecked();
        }
        return state;
    }

    QStringList actionNames() const override
    {
        const QStringList names = QAccessibleWidget::actionNames();
        return button() && button()->isEnabled() ? QStringList(pressAction()) + names : names;
    }

    void doAction(const QString &name) override
    {
        if (button() && name == pressAction())
            button()->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    QAbstractButton *button() const { return qobject_cast<QAbstractButton *>(widget()); }
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    const QVariant role = widget ? widget->property(kRole) : QVariant();
    return role.isValid() ? new RoleInterface(*widget, static_cast<QAccessible::Role>(role.toInt())) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget &control, QAccessible::Role role)
{
    QAccessible::installFactory(makeInterface); // does nothing the second time
    control.setProperty(kRole, static_cast<int>(role));
}

} // namespace hazelmark
