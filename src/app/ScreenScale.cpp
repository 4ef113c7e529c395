#include "ScreenScale.h"

#include "Log.h"
#include "MainWinController.h"
#include "Screen.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>
#include <unistd.h>

namespace hazelmark {

namespace {

constexpr char kToolkitFactor[] = "QT_SCALE_FACTOR";
constexpr char kFactorBefore[] = "HAZELMARK_FACTOR_BEFORE"; ///< set while the program starts again

void restore(const char *name, const QByteArray &value)
{
    if (value.isEmpty())
        qunsetenv(name);
    else
        qputenv(name, value);
}

} // namespace

double ScreenScale::factorFor(QSizeF visible, double pixelsPerPoint)
{
    if (visible.isEmpty())
        return 1;
    // The window stands a twentieth from the corner and is never smaller than its minimum.
    constexpr double kShare = 0.95;
    const double needed = std::min(visible.width() / std::ceil(MainWinController::kMinimumWidth / kShare),
                                   visible.height() / std::ceil(MainWinController::kMinimumHeight / kShare));
    constexpr double kSteps = 10000; // rounded down, so that it fits after rounding, too
    const double smallest = std::clamp(1 / std::max(1.0, pixelsPerPoint), kSmallest, 1.0);
    return std::clamp(std::floor(needed * kSteps) / kSteps, smallest, 1.0);
}

void ScreenScale::apply(char **argv)
{
    if (qEnvironmentVariableIsSet(kFactorBefore)) {
        restore(kToolkitFactor, qgetenv(kFactorBefore));
        qunsetenv(kFactorBefore);
        return;
    }
    const double factor = factorFor(Screen::mainScreen().visibleFrame().size(), Screen::mainScreen().backingScale());
    if (factor >= 1)
        return;
    const QByteArray before = qgetenv(kToolkitFactor);
    bool isNumber = false;
    const double desktop = before.toDouble(&isNumber);
    qputenv(kFactorBefore, before);
    qputenv(kToolkitFactor, QByteArray::number(factor * (isNumber && desktop > 0 ? desktop : 1)));
    execv("/proc/self/exe", argv);
    qCWarning(lcApp, "cannot start again with smaller points");
    restore(kToolkitFactor, before);
    qunsetenv(kFactorBefore);
}

} // namespace hazelmark
