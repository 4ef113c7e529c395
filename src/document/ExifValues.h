#pragma once

#include <QByteArray>
#include <QVariant>

#include <exiv2/exiv2.hpp>

namespace hazelmark {

/// A tag's value as an object of the property dictionary: whole numbers as qlonglong, rationals as double, texts as
/// QString without the blanks and zero bytes at their end, several values as a QVariantList. Invalid for an empty text,
/// a number without a value (a denominator of 0) and data that no one reads as a list.
QVariant exifObject(const Exiv2::Value &value);

/// The text of a tag that begins with the name of its character code (the user comment and two GPS tags).
QVariant codedText(const Exiv2::Value &value, Exiv2::ByteOrder byteOrder);

/// Degrees, minutes and seconds as decimal degrees; invalid without degrees.
QVariant decimalDegrees(const Exiv2::Value &value);

/// Hours, minutes and seconds as "09:41:07".
QVariant timeText(const Exiv2::Value &value);

/// The value's bytes as they are in the file, in the order given.
QByteArray rawBytes(const Exiv2::Value &value, Exiv2::ByteOrder byteOrder);

/// UTF-8 where it is that, else Latin-1; blanks and zero bytes at the end are dropped, and all after a zero byte.
QString metadataText(const QByteArray &bytes);

} // namespace hazelmark
