#include "PhotoTest.h"

#include "ReadableTypes.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

namespace hazelmark {

bool isReadablePhotoFile(const QString &path)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return false;
    if (ReadableTypes::contains(file.suffix()))
        return true;
    const QMimeType type = QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchContent);
    const QStringList suffixes = type.suffixes();
    return std::any_of(suffixes.begin(), suffixes.end(), &ReadableTypes::contains);
}

} // namespace hazelmark
