#pragma once

#include <QLoggingCategory>

namespace hazelmark {

// A category a module, "hazelmark.MODULE".
Q_DECLARE_LOGGING_CATEGORY(lcPlatform)
Q_DECLARE_LOGGING_CATEGORY(lcCodecs)
Q_DECLARE_LOGGING_CATEGORY(lcDocument)
Q_DECLARE_LOGGING_CATEGORY(lcImageIo)
Q_DECLARE_LOGGING_CATEGORY(lcSession)
Q_DECLARE_LOGGING_CATEGORY(lcScreen)
Q_DECLARE_LOGGING_CATEGORY(lcApp)

} // namespace hazelmark
