#include "PointString.h"

#include <QLocale>

namespace hazelmark {

QString stringFromPoint(QPointF point)
{
    const auto number = [](double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); };
    return u"{%1, %2}"_qs.arg(number(point.x()), number(point.y()));
}

std::optional<QPointF> pointFromString(QStringView text)
{
    text = text.trimmed();
    if (!text.startsWith(u'{') || !text.endsWith(u'}'))
        return std::nullopt;
    text = text.sliced(1, text.size() - 2);
    const qsizetype comma = text.indexOf(u',');
    if (comma < 0)
        return std::nullopt;
    bool xRead = false;
    bool yRead = false;
    const QPointF point(text.first(comma).trimmed().toDouble(&xRead),
                        text.sliced(comma + 1).trimmed().toDouble(&yRead));
    return xRead && yRead ? std::optional(point) : std::nullopt;
}

} // namespace hazelmark
