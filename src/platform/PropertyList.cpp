#include "PropertyList.h"

#include "Log.h"

#include <QFile>
#include <QVariantList>
#include <QXmlStreamReader>

namespace hazelmark {

namespace {

constexpr qint64 kLargestFile = 4 << 20;
constexpr int kDeepest = 16;

QVariant readValue(QXmlStreamReader &xml, int depth);

QVariantMap readDictionary(QXmlStreamReader &xml, int depth)
{
    QVariantMap dictionary;
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("key")) {
            xml.raiseError(QStringLiteral("a key is missing"));
            break;
        }
        const QString key = xml.readElementText();
        if (!xml.readNextStartElement()) {
            xml.raiseError(QStringLiteral("the key \"%1\" has no value").arg(key));
            break;
        }
        dictionary.insert(key, readValue(xml, depth));
    }
    return dictionary;
}

QVariantList readArray(QXmlStreamReader &xml, int depth)
{
    QVariantList array;
    while (xml.readNextStartElement())
        array.append(readValue(xml, depth));
    return array;
}

QVariant readValue(QXmlStreamReader &xml, int depth)
{
    const QString type = xml.name().toString();
    if (depth >= kDeepest) {
        xml.raiseError(QStringLiteral("too many levels"));
        return {};
    }
    if (type == QLatin1String("string"))
        return xml.readElementText();
    if (type == QLatin1String("dict"))
        return readDictionary(xml, depth + 1);
    if (type == QLatin1String("array"))
        return readArray(xml, depth + 1);
    xml.raiseError(QStringLiteral("\"%1\" is no type of value").arg(type));
    return {};
}

} // namespace

std::optional<QVariantMap> readPropertyList(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > kLargestFile) {
        qCWarning(lcPlatform) << "Cannot read" << path;
        return {};
    }
    QXmlStreamReader xml(&file);
    QVariantMap root;
    if (xml.readNextStartElement() && xml.name() == QLatin1String("plist") && xml.readNextStartElement() &&
        xml.name() == QLatin1String("dict")) {
        root = readDictionary(xml, 1);
        if (xml.readNextStartElement())
            xml.raiseError(QStringLiteral("more than one root"));
    } else if (!xml.hasError()) {
        xml.raiseError(QStringLiteral("no property list with a dictionary"));
    }
    if (xml.hasError()) {
        qCWarning(lcPlatform) << path << "line" << xml.lineNumber() << xml.errorString();
        return {};
    }
    return root;
}

} // namespace hazelmark
