#include "PathParts.h"

namespace hazelmark {

namespace {

QString withoutTrailingSlashes(QString path)
{
    while (path.size() > 1 && path.endsWith(QLatin1Char('/')))
        path.chop(1);
    return path;
}

} // namespace

QString lastPathComponent(const QString &path)
{
    const QString trimmed = withoutTrailingSlashes(path);
    return trimmed == QLatin1String("/") ? trimmed : trimmed.mid(trimmed.lastIndexOf(QLatin1Char('/')) + 1);
}

QString pathWithoutLastComponent(const QString &path)
{
    const QString trimmed = withoutTrailingSlashes(path);
    const qsizetype slash = trimmed.lastIndexOf(QLatin1Char('/'));
    if (slash < 0)
        return QStringLiteral("");
    return slash == 0 ? QStringLiteral("/") : withoutTrailingSlashes(trimmed.left(slash));
}

QString pathExtension(const QString &path)
{
    const QString name = lastPathComponent(path);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot <= 0 ? QStringLiteral("") : name.mid(dot + 1);
}

QString nameWithoutExtension(const QString &path)
{
    const QString name = lastPathComponent(path);
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot <= 0 ? name : name.left(dot);
}

} // namespace hazelmark
