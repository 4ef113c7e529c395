#pragma once

class QPainter;
class QWidget;

namespace hazelmark {

/// Whether `control` is what the keyboard acts on, and the person uses the keyboard to get from one to the other:
/// somebody with a mouse in hand is not to wonder about rings.
bool showsKeyboardFocus(const QWidget &control);

/// Draws the ring that says so just inside the edge of `control`.
void drawFocusRing(QPainter &painter, const QWidget &control);

} // namespace hazelmark
