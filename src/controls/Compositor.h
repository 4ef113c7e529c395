#pragma once

#include <QMargins>
#include <qwindowdefs.h>

namespace hazelmark {

/// What the window system does with windows that are not rectangles of opaque pixels.
class Compositor
{
public:
    virtual ~Compositor() = default;
    static const Compositor &current();

    /// Whether transparent pixels of a window show what is beneath it. Always so on Wayland.
    virtual bool isComposited() const;
    /// Whether a window may draw its own shadow around its frame, and say how wide it is, so that the window manager
    /// places, snaps and tiles the frame without it. Never without compositing.
    virtual bool acceptsFrameExtents() const;
    /// Says that `extents` (in pixels) of the window are shadow. For windows that were created, where
    /// `acceptsFrameExtents()`.
    virtual void setFrameExtents(WId window, const QMargins &extents) const;
};

} // namespace hazelmark
