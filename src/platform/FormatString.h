#pragma once

#include <QString>
#include <QStringList>

namespace hazelmark {

/// Fills the specifiers "%@" and "%d" of `format`, in their order, with `values`. Specifiers without a value stay as
/// they are, values too many are dropped, and a percent sign before anything else is just that.
QString formatString(const QString &format, const QStringList &values);

} // namespace hazelmark
