#include "ImageIoLog.h"

#include <cstdio>

namespace hazelmark {

Q_LOGGING_CATEGORY(lcImageIo, "hazelmark.imageio")

void writeToStandardError(const QString &text)
{
    if (!lcImageIo().isWarningEnabled())
        return;
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

} // namespace hazelmark
