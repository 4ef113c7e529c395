#pragma once

#include <QByteArray>

class QScreen;

namespace hazelmark {

/// The colour profile of the screen: what the session set for it (the window property _ICC_PROFILE of the X root
/// window, or _ICC_PROFILE_n for monitor n). Empty where none is set or the window system keeps none; such a screen
/// counts as sRGB. Main thread only.
QByteArray screenProfile(const QScreen *screen);

} // namespace hazelmark
