#include "DocumentLog.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcDocument, "hazelmark.document")

} // namespace hazelmark
