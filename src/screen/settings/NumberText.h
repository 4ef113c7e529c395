#pragma once

#include <QLocale>
#include <QString>

namespace hazelmark {

/// The number that `text` begins with: blanks, a sign, digits with `locale`'s decimal sign or a point, an exponent.
/// What follows it does not count, and a text that begins with no number is 0. Never not-a-number; a number beyond
/// the range of double is infinite.
double numberInText(const QString &text, const QLocale &locale = QLocale());

/// `value` as a whole number, "%.0f": halves go to the even neighbour. There is no minus before 0.
QString wholeNumberText(double value);

} // namespace hazelmark
