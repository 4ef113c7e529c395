#include "CodecsLog.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcCodecs, "hazelmark.codecs")

} // namespace hazelmark
