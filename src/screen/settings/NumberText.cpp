#include "NumberText.h"

#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace hazelmark {

double numberInText(const QString &text, const QLocale &locale)
{
    // Input methods of some languages give digits and signs at full width.
    QString plain = text.normalized(QString::NormalizationForm_KC);
    plain.replace(QChar(0x2212), QLatin1Char('-')); // the minus sign proper
    if (locale.decimalPoint() == QLatin1String(","))
        plain.replace(QLatin1Char(','), QLatin1Char('.'));
    static const QRegularExpression number(
        QStringLiteral("^\\s*([+-]?)((?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?)"));
    const QRegularExpressionMatch match = number.match(plain);
    if (!match.hasMatch())
        return 0;
    bool ok = false;
    double magnitude = match.captured(2).toDouble(&ok);
    if (!ok && !std::isinf(magnitude)) // too small, or too large, for a double
        magnitude = 0;
    return match.captured(1) == QLatin1String("-") ? -magnitude : magnitude;
}

QString wholeNumberText(double value)
{
    const double whole = std::nearbyint(value);
    return QString::number(whole == 0 ? 0.0 : whole, 'f', 0);
}

} // namespace hazelmark
