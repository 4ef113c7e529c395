#include "ExifValues.h"

#include "ObjectText.h"

#include <QStringDecoder>

#include <algorithm>
#include <cmath>
#include <optional>

namespace hazelmark {

namespace {

/// More values than this are data and no list that a person would read.
constexpr long kMaxListLength = 1024;
/// The same for tags without a type.
constexpr long kMaxUndefinedLength = 64;
/// Longer texts are cut: what stands in a summary has to end somewhere.
constexpr qsizetype kMaxTextLength = 64 * 1024;

template <typename Integer>
QVariant number(const std::pair<Integer, Integer> &ratio)
{
    return ratio.second == 0 ? QVariant() : QVariant(double(ratio.first) / ratio.second);
}

QVariant number(double value)
{
    return std::isfinite(value) ? QVariant(value) : QVariant();
}

QVariant number(float value)
{
    return number(double(value));
}

template <typename Integer>
QVariant number(Integer value)
{
    return qlonglong(value);
}

/// The values as a list if they are of type T.
template <typename T>
std::optional<QVariantList> listOf(const Exiv2::Value &value)
{
    const auto *values = dynamic_cast<const Exiv2::ValueType<T> *>(&value);
    if (!values)
        return std::nullopt;
    QVariantList list;
    for (const T &element : values->value_)
        list += number(element);
    return list;
}

QVariantList byteList(const QByteArray &bytes)
{
    QVariantList list;
    for (const char byte : bytes)
        list += qlonglong(quint8(byte));
    return list;
}

QVariantList numbersOf(const Exiv2::Value &value)
{
    if (value.count() > kMaxListLength)
        return {};
    for (const auto &list :
         {listOf<uint16_t>(value), listOf<uint32_t>(value), listOf<Exiv2::URational>(value), listOf<int16_t>(value),
          listOf<int32_t>(value), listOf<Exiv2::Rational>(value), listOf<float>(value), listOf<double>(value)}) {
        if (list)
            return *list;
    }
    // Bytes of any kind.
    const QByteArray bytes = rawBytes(value, Exiv2::littleEndian);
    return bytes.size() > kMaxUndefinedLength ? QVariantList() : byteList(bytes);
}

bool isPrintable(const QByteArray &bytes)
{
    return !bytes.isEmpty() && std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

/// All before the first zero.
template <typename Text>
Text upToZero(Text text)
{
    const qsizetype end = text.indexOf(typename Text::value_type(u'\0'));
    if (end >= 0)
        text.truncate(end);
    return text;
}

QVariant textObject(const QString &text)
{
    return text.isEmpty() ? QVariant() : QVariant(text);
}

} // namespace

QByteArray rawBytes(const Exiv2::Value &value, Exiv2::ByteOrder byteOrder)
{
    QByteArray bytes(value.size(), '\0');
    value.copy(reinterpret_cast<Exiv2::byte *>(bytes.data()), byteOrder);
    return bytes;
}

QString metadataText(const QByteArray &bytes)
{
    const QByteArray used = upToZero(bytes).left(kMaxTextLength);
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(used);
    if (utf8.hasError())
        text = QString::fromLatin1(used);
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text;
}

QVariant exifObject(const Exiv2::Value &value)
{
    if (value.typeId() == Exiv2::asciiString || value.typeId() == Exiv2::string)
        return textObject(metadataText(rawBytes(value, Exiv2::littleEndian)));
    // Tags such as ExifVersion hold digits without being texts.
    if (value.typeId() == Exiv2::undefined && value.count() > 1 && value.count() <= kMaxUndefinedLength) {
        const QByteArray bytes = rawBytes(value, Exiv2::littleEndian);
        if (isPrintable(bytes))
            return metadataText(bytes);
    }
    const QVariantList numbers = numbersOf(value);
    if (numbers.isEmpty())
        return {};
    return numbers.size() == 1 ? numbers.front() : QVariant(numbers);
}

QVariant codedText(const Exiv2::Value &value, Exiv2::ByteOrder byteOrder)
{
    constexpr qsizetype kCodeSize = 8;
    const QByteArray bytes = rawBytes(value, byteOrder);
    const QByteArray code = bytes.left(kCodeSize);
    const QByteArray text = bytes.mid(kCodeSize, kMaxTextLength);
    if (!code.startsWith("UNICODE")) {
        const bool hasCode = code.startsWith("ASCII") || code.startsWith("JIS") || code.startsWith('\0');
        return textObject(metadataText(hasCode ? text : bytes));
    }
    const auto encoding = byteOrder == Exiv2::bigEndian ? QStringDecoder::Utf16BE : QStringDecoder::Utf16LE;
    const QString decoded = QStringDecoder(encoding)(text);
    return textObject(upToZero(decoded).trimmed());
}

QVariant decimalDegrees(const Exiv2::Value &value)
{
    const QVariantList parts = numbersOf(value);
    if (parts.isEmpty() || !parts.front().isValid())
        return {};
    double degrees = 0;
    double unit = 1;
    for (qsizetype i = 0; i < std::min<qsizetype>(parts.size(), 3); ++i, unit /= 60)
        degrees += parts.at(i).toDouble() * unit;
    return degrees;
}

QVariant timeText(const Exiv2::Value &value)
{
    const QVariantList parts = numbersOf(value);
    if (parts.size() != 3)
        return {};
    const double seconds = parts.at(2).toDouble();
    const bool isWhole = std::trunc(seconds) == seconds;
    return QString::asprintf(isWhole ? "%02d:%02d:%02.0f" : "%02d:%02d:%05.2f", integerValue(parts.at(0)),
                             integerValue(parts.at(1)), seconds);
}

} // namespace hazelmark
