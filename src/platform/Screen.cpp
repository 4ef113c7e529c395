#include "Screen.h"

#include "ProcessWide.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace hazelmark {

const Screen &Screen::mainScreen()
{
    return ProcessWide<Screen>::instance();
}

QRectF Screen::visibleFrame() const
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? QRectF(screen->availableGeometry()) : QRectF();
}

QPointF Screen::origin() const
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? QPointF(screen->geometry().topLeft()) : QPointF();
}

double Screen::backingScale() const
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? std::max(1.0, screen->devicePixelRatio()) : 1.0;
}

} // namespace hazelmark
