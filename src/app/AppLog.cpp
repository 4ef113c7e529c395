#include "AppLog.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcApp, "hazelmark.app", QtInfoMsg)

} // namespace hazelmark
