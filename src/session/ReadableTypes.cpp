#include "ReadableTypes.h"

#include "ForeignKinds.h"

namespace hazelmark {

namespace {

QStringList makeExtensions()
{
    QStringList known{QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("jpe"),  QStringLiteral("jfif"),
                      QStringLiteral("png"), QStringLiteral("tif"),  QStringLiteral("tiff"), QStringLiteral("gif"),
                      QStringLiteral("bmp"), QStringLiteral("dib")};
    QStringList others;
    for (const QByteArray &format : foreignExtensions()) {
        const QString extension = QString::fromLatin1(format);
        if (!known.contains(extension))
            others << extension;
    }
    return known + others;
}

} // namespace

const QStringList &ReadableTypes::extensions()
{
    static const QStringList list = makeExtensions();
    return list;
}

bool ReadableTypes::contains(const QString &extension)
{
    return extensions().contains(extension, Qt::CaseInsensitive);
}

QString ReadableTypes::fileNamePatterns()
{
    QStringList patterns;
    for (const QString &extension : extensions())
        patterns << QStringLiteral("*.") + extension << QStringLiteral("*.") + extension.toUpper();
    return patterns.join(QLatin1Char(' '));
}

} // namespace hazelmark
