#include "ReadableTypes.h"

#include <QImageReader>

namespace hazelmark {

namespace {

/// Qt's plugins read these too, but they hold no pixels of a photo.
constexpr const char *kNoPhotos[] = {"svg", "svgz", "pdf", "wbmp"};

QStringList makeExtensions()
{
    QStringList known{QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("jpe"),  QStringLiteral("jfif"),
                      QStringLiteral("png"), QStringLiteral("tif"),  QStringLiteral("tiff"), QStringLiteral("gif"),
                      QStringLiteral("bmp"), QStringLiteral("dib")};
    QStringList others;
    for (const QByteArray &format : QImageReader::supportedImageFormats()) {
        const QString extension = QString::fromLatin1(format).toLower();
        if (!known.contains(extension))
            others << extension;
    }
    for (const char *extension : kNoPhotos)
        others.removeAll(QLatin1String(extension));
    others.removeDuplicates();
    others.sort();
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
