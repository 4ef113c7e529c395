#include "SessionLog.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcSession, "hazelmark.session", QtInfoMsg)

} // namespace hazelmark
