#include "FormatString.h"

namespace hazelmark {

QString formatString(const QString &format, const QStringList &values)
{
    QString text;
    qsizetype next = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const bool specifier = format[i] == u'%' && i + 1 < format.size() &&
                               (format[i + 1] == u'@' || format[i + 1] == u'd') && next < values.size();
        if (specifier) {
            text += values[next++];
            ++i;
        } else {
            text += format[i];
        }
    }
    return text;
}

} // namespace hazelmark
