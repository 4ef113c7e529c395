#include "Log.h"

namespace hazelmark {

Q_LOGGING_CATEGORY(lcPlatform, "hazelmark.platform")
Q_LOGGING_CATEGORY(lcCodecs, "hazelmark.codecs")
Q_LOGGING_CATEGORY(lcDocument, "hazelmark.document")
Q_LOGGING_CATEGORY(lcImageIo, "hazelmark.imageio")
Q_LOGGING_CATEGORY(lcSession, "hazelmark.session", QtInfoMsg)
Q_LOGGING_CATEGORY(lcScreen, "hazelmark.screen", QtInfoMsg)
Q_LOGGING_CATEGORY(lcApp, "hazelmark.app", QtInfoMsg)

} // namespace hazelmark
