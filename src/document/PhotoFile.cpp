#include "PhotoFile.h"

#include "FileAttributes.h"
#include "Log.h"
#include "PathParts.h"

#include <QLocale>

namespace hazelmark {

namespace {

/// Null for a file that is no picture.
PhotoPtr openedPhoto(const QString &path)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    if (!photo)
        return nullptr;
    (*photo)->release();
    return *photo;
}

} // namespace

PhotoFile::PhotoFile(const QString &path)
    : PhotoFile(path, openedPhoto(path))
{
}

PhotoFile::PhotoFile(const PhotoPtr &photo)
    : PhotoFile(photo->path(), photo)
{
}

PhotoFile::PhotoFile(const QString &path, const PhotoPtr &photo)
    : m_filePath(path)
    , m_fileName(lastPathComponent(path))
    , m_fileExtension(pathExtension(path))
    , m_fileContainerFolderName(lastPathComponent(pathWithoutLastComponent(path)))
    , m_photo(photo)
    , m_identity(photo ? photo->identity() : FileIdentity::ofPath(path))
{
    readAttributes();
    if (!photo)
        return;
    // The last picture that states a positive size wins, each dimension for itself.
    for (const QSize &size : photo->uprightSizes()) {
        if (size.width() > 0)
            m_width = size.width();
        if (size.height() > 0)
            m_height = size.height();
    }
    m_metaInfoDict = photo->dictionary();
}

std::optional<QVariantMap> PhotoFile::exifDict(const QString &path)
{
    const Outcome<PhotoPtr> photo = Photo::open(path);
    return photo ? std::optional((*photo)->dictionary()) : std::nullopt;
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
    const std::optional<FileAttributes> attributes = FileAttributes::ofPath(m_filePath);
    m_fileSize = QString::number(attributes ? attributes->size : 0);
    if (!attributes) {
        qCWarning(lcDocument) << "Not found";
        return;
    }
    m_fileCreationDate = creationDateText(attributes->created.toLocalTime());
}

} // namespace hazelmark
