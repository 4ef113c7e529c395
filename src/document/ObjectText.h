#pragma once

#include <QString>
#include <QVariant>

namespace hazelmark {

/// A dictionary's object in plain text: numbers in their shortest form (4000, 4.2), "(null)" for an absent one.
QString objectText(const QVariant &object);

/// The texts of an array's elements, joined with "," and no space. Any other object counts as an array of one.
QString joinedObjectText(const QVariant &array);

/// The whole part of a number or of the number that a text begins with; 0 for anything else.
int integerValue(const QVariant &object);

/// 0.0 for what is no number.
double doubleValue(const QVariant &object);

} // namespace hazelmark
