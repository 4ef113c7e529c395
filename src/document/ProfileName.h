#pragma once

#include <QByteArray>
#include <QString>

namespace hazelmark {

/// The description that an ICC profile gives of itself, in English where it has it; null when the bytes are no profile.
QString profileName(const QByteArray &iccProfile);

} // namespace hazelmark
