#pragma once

class QEvent;
class QWidget;

namespace hazelmark {

/// Whether the pointer hovers over a control. It is taken to be inside from the start: a control that appears under a
/// resting pointer does not light up before the pointer has left it and come back. Only the application that the person
/// works in has hovering controls.
class HoverTracker
{
public:
    /// To be told of every event of `control`. Whether hovering began or ended with this one.
    bool follow(const QEvent &event, const QWidget &control);
    bool isHovering() const { return m_pointer == Pointer::Hovering; }

private:
    enum class Pointer {
        Outside,
        AssumedInside, ///< and not seen to leave so far
        Hovering,
    };

    Pointer m_pointer = Pointer::Outside;
    bool m_appearing = false; ///< between being shown and being drawn, when its place on the screen is settled
};

} // namespace hazelmark
