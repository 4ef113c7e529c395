#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>
#include <utility>

// A record keeps the list of its fields as a macro that hands each one's type, name and setter to another macro: one
// of these two.

/// Declares a field: the member (null, invalid or 0 at first), its getter and its setter.
#define HAZELMARK_RECORD_FIELD(Type, name, setter)                                                                     \
public:                                                                                                                \
    const Type &name() const                                                                                           \
    {                                                                                                                  \
        return m_##name;                                                                                               \
    }                                                                                                                  \
    void setter(const Type &value)                                                                                     \
    {                                                                                                                  \
        m_##name = value;                                                                                              \
    }                                                                                                                  \
                                                                                                                       \
private:                                                                                                               \
    Type m_##name{};

/// Makes the field an element of the record's `fields()`.
#define HAZELMARK_RECORD_FIELD_ENTRY(Type, name, setter) {QStringLiteral(#name), fieldValue(m_##name)},

namespace hazelmark {

/// Every field of a record under its own name, in the order of declaration; an invalid value where a field is absent.
using RecordFields = QList<std::pair<QString, QVariant>>;

template <typename T>
QVariant fieldValue(const T &value)
{
    return QVariant::fromValue(value);
}

inline QVariant fieldValue(const QVariant &value)
{
    return value;
}

inline QVariant fieldValue(const QString &value)
{
    return value.isNull() ? QVariant() : QVariant(value);
}

inline QVariant fieldValue(const QImage &value)
{
    return value.isNull() ? QVariant() : QVariant(value);
}

inline QVariant fieldValue(const std::optional<QVariantMap> &value)
{
    return value ? QVariant(*value) : QVariant();
}

} // namespace hazelmark
