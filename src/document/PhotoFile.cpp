#include "PhotoFile.h"

#include "FileAttributes.h"
#include "Log.h"
#include "PathParts.h"
#include "PropertyDictionary.h"

#include <QLocale>

namespace hazelmark {

PhotoFile::PhotoFile(const QString &path)
    : m_filePath(path)
    , m_fileName(lastPathComponent(path))
    , m_fileExtension(pathExtension(path))
    , m_fileContainerFolderName(lastPathComponent(pathWithoutLastComponent(path)))
{
    readAttributes();
    const std::optional<PictureProperties> properties = readPictureProperties(path);
    if (!properties)
        return;
    // The last picture that states a positive size wins, each dimension for itself.
    for (const QSize &size : properties->uprightSizes) {
        if (size.width() > 0)
            m_width = size.width();
        if (size.height() > 0)
            m_height = size.height();
    }
    m_metaInfoDict = properties->dictionary;
}

std::optional<QVariantMap> PhotoFile::exifDict(const QString &path)
{
    return readPropertyDictionary(path);
}

QString PhotoFile::creationDateText(const QDateTime &created)
{
    return QLocale().toString(created, QStringLiteral("MMM-dd-yyyy hh:mm:s aP"));
}

RecordFields PhotoFile::fields() const
{
    return {
        HAZELMARK_PHOTO_FILE_FIELDS(HAZELMARK_RECORD_FIELD_ENTRY){QStringLiteral("fileURL"), fieldValue(fileURL())}};
}

void PhotoFile::readAttributes()
{
    m_identity = FileIdentity::ofPath(m_filePath); // before anything is read: a later change shows
    const std::optional<FileAttributes> attributes = FileAttributes::ofPath(m_filePath);
    m_fileSize = QString::number(attributes ? attributes->size : 0);
    if (!attributes) {
        qCWarning(lcDocument) << "Not found";
        return;
    }
    m_fileCreationDate = creationDateText(attributes->created.toLocalTime());
}

} // namespace hazelmark
