#include "PlatformLog.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcPlatform, "hazelmark.platform")

} // namespace hazelmark
