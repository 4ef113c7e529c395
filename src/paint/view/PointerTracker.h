#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>

#include <functional>

class QWidget;

namespace hazelmark {

/// Tells when the pointer comes over a widget's rectangle and when it leaves it.
///
/// By the pointer's place alone, whichever widgets lie on top: the main screen shows and hides stacked widgets when
/// it is told, and Qt's own enter and leave events would answer each of these with the next one, without end. Nothing
/// is told from within such an event, nor while a button is held or a stroke is under way, nor of a hidden widget. A
/// pointer that comes while the application is not active is told of once it is.
///
/// A widget that is shown counts as having the pointer over it until the pointer moves somewhere else; one that has
/// it there is told so.
class PointerTracker : public QObject
{
public:
    using Handler = std::function<void()>;
    using Test = std::function<bool()>;

    /// `isStrokeUnderWay`: a pen and a finger hold no button.
    PointerTracker(QWidget &area, Handler entered, Handler exited, Test isStrokeUnderWay);

    /// Where the pointer is now, seen from the area; also true of a place that other widgets cover.
    bool isPointerInside() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class State {
        Outside,
        AssumedInside, ///< shown, and the pointer has not moved since
        Inside,
    };

    void areaShown();
    void areaHidden();
    void check();

    QWidget &m_area;
    Handler m_entered;
    Handler m_exited;
    Test m_isStrokeUnderWay;
    State m_state = State::Outside;
    QPoint m_placeWhenShown;
    /// Not every move comes here: others may lie on top.
    QTimer m_poll;
    /// A desktop that hides the pointer's place outside the window leaves it at the last one inside.
    bool m_hasLeftWindow = false;
    QWidget *m_window = nullptr;
};

} // namespace hazelmark
