#include "ObjectText.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace hazelmark {

namespace {

/// Up to here every whole number has a double of its own.
constexpr double kLargestExactWhole = 9007199254740992.0;

QString numberText(double number)
{
    if (std::trunc(number) == number && std::abs(number) <= kLargestExactWhole)
        return QString::number(qint64(number));
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

} // namespace

QString objectText(const QVariant &object)
{
    switch (object.typeId()) {
    case QMetaType::UnknownType:
        return QStringLiteral("(null)");
    case QMetaType::Double:
    case QMetaType::Float:
        return numberText(object.toDouble());
    case QMetaType::Bool:
        return QString::number(object.toInt());
    default:
        return object.toString();
    }
}

QString joinedObjectText(const QVariant &array)
{
    if (array.typeId() != QMetaType::QVariantList && array.typeId() != QMetaType::QStringList)
        return objectText(array);
    QStringList texts;
    const QVariantList elements = array.toList();
    for (const QVariant &element : elements)
        texts += objectText(element);
    return texts.join(QLatin1Char(','));
}

double doubleValue(const QVariant &object)
{
    if (object.typeId() != QMetaType::QString)
        return object.toDouble();
    // As much of the text as reads as a number.
    const QByteArray text = object.toString().trimmed().toLatin1();
    for (qsizetype length = std::min<qsizetype>(text.size(), 32); length > 0; --length) {
        bool isNumber = false;
        const double number = text.left(length).toDouble(&isNumber);
        if (isNumber)
            return number;
    }
    return 0.0;
}

int integerValue(const QVariant &object)
{
    const double number = doubleValue(object);
    if (std::isnan(number))
        return 0;
    return int(std::clamp<double>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace hazelmark
