// What assistive technology is told of drawn controls.
#include "AccessibleRole.h"
#include "IMGButton.h"
#include "TitlebarWindow.h"

#include <QAccessible>
#include <QPushButton>

#include <gtest/gtest.h>

namespace hazelmark {

TEST(AccessibleRole, NamesTheControlAndLetsItBePressed)
{
    TitlebarWindow window;
    int closed = 0;
    TitlebarWindow::Actions actions;
    actions.close = [&] { ++closed; };
    window.setActions(actions);
    window.setButtonNames(QStringLiteral("Close"), {}, {}, {});
    QAccessibleInterface *close = QAccessible::queryAccessibleInterface(window.closeButton());
    EXPECT_EQ(close->role(), QAccessible::Button) << "though it is checkable";
    EXPECT_EQ(close->text(QAccessible::Name), QStringLiteral("Close"));
    close->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(closed, 1);
    for (const auto role : {QAccessible::RadioButton, QAccessible::ButtonDropDown}) {
        QPushButton button;
        setAccessibleRole(button, role); // before its text is told of
        button.setText(QStringLiteral("More"));
        button.setCheckable(true);
        QAccessibleInterface *told = QAccessible::queryAccessibleInterface(&button);
        EXPECT_EQ(told->text(QAccessible::Name), QStringLiteral("More"));
        for (const bool on : {false, true}) {
            button.setChecked(on);
            EXPECT_EQ(told->state().checked, on && role == QAccessible::RadioButton);
            EXPECT_EQ(told->state().expanded, on && role == QAccessible::ButtonDropDown);
            EXPECT_EQ(told->state().collapsed, !on && role == QAccessible::ButtonDropDown);
        }
    }
}

} // namespace hazelmark
