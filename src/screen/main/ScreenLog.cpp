#include "ScreenLog.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcScreen, "hazelmark.screen", QtInfoMsg)

} // namespace hazelmark
