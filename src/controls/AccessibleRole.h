#pragma once

#include <QAccessible>

class QWidget;

namespace hazelmark {

/// Tells assistive technology what a drawn control is, where its class does not say it or says something else: its
/// name, description and states stay the widget's own. Buttons can be pressed, and a checkable one with the role
/// QAccessible::ButtonDropDown unfolds what it stands over: its state says whether it has.
///
/// To be called when the control is made, before anybody asks what it is.
void setAccessibleRole(QWidget &control, QAccessible::Role role);

} // namespace hazelmark
