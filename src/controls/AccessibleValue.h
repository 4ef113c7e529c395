#pragma once

class QWidget;

namespace hazelmark {

/// Lets assistive technology read (and, for a FloatSlider, change) the values of this module's drawn controls. Any
/// control that is to be read calls it when it is made; more than one call costs nothing.
void installAccessibleValues();

/// Tells assistive technology that the value that `control` shows is now `value`.
void announceValue(QWidget &control, double value);

} // namespace hazelmark
