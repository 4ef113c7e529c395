#pragma once

#include <QLoggingCategory>

namespace hazelmark {

Q_DECLARE_LOGGING_CATEGORY(lcScreen)

} // namespace hazelmark
