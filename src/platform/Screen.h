#pragma once

#include <QRectF>

namespace hazelmark {

/// The main screen of the desktop.
class Screen
{
public:
    virtual ~Screen() = default;
    static const Screen &mainScreen();

    /// What panels and docks leave free, in points, y downwards. Empty without a window system.
    virtual QRectF visibleFrame() const;
    /// Where its top left corner stands on the desktop, which may have several screens, in points.
    virtual QPointF origin() const;
    /// Pixels per point, 1 or more.
    virtual double backingScale() const;
};

} // namespace hazelmark
