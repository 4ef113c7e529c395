#pragma once

#include <QPointF>
#include <QString>

#include <optional>

namespace hazelmark {

/// "{x, y}", each number in the shortest decimal form that reads back as the same double.
QString stringFromPoint(QPointF point);

/// The inverse. Blanks around the numbers do not matter; nothing for any other text.
std::optional<QPointF> pointFromString(QStringView text);

} // namespace hazelmark
