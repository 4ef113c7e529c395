#pragma once

#include <QLoggingCategory>
#include <QString>

namespace hazelmark {

Q_DECLARE_LOGGING_CATEGORY(lcImageIo)

/// Writes `text` to standard error as it stands, without a line end, unless warnings of this module are off.
void writeToStandardError(const QString &text);

} // namespace hazelmark
