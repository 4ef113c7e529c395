#pragma once

#include <QString>

namespace hazelmark {

/// `text` as a menu's title, in which a single "&" would mark a key.
inline QString asTitle(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace hazelmark
