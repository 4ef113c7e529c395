#pragma once

#include <QSizeF>

namespace hazelmark {

/// Makes the program's points smaller on a screen that the main window would hang off.
///
/// The toolkit takes one factor for the whole program, on top of what the desktop has set, and only before there is an
/// application object; what a screen leaves free is known only after. So the program starts once more, in the same
/// process, where the factor is not 1.
class ScreenScale
{
public:
    /// No smaller: texts are to be read.
    static constexpr double kSmallest = 0.6;

    /// The factor with which the window, at the place of its first set-up, lies within `visible`, which is in points
    /// without the factor. 1 where it does so anyway. A point stays a pixel at least, of which it has `pixelsPerPoint`
    /// without the factor: the toolkit paints nothing smaller.
    static double factorFor(QSizeF visible, double pixelsPerPoint);

    /// To be called when the application object is there and nothing else. Does not come back when it starts the
    /// program again; comes back otherwise, and then programs that are started from here find the environment as it
    /// was. `argv`: as the process got them, a null pointer at their end.
    static void apply(char **argv);
};

} // namespace hazelmark
