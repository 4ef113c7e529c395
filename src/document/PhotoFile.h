#pragma once

#include "Photo.h"
#include "RecordFields.h"

#include <QDateTime>

// clang-format off
#define HAZELMARK_PHOTO_FILE_FIELDS(FIELD)                                                                             \
    FIELD(QString, filePath, setFilePath)           /* in full, as passed */                                           \
    FIELD(QString, fileName, setFileName)           /* with the extension */                                           \
    FIELD(QString, fileExtension, setFileExtension) /* without the dot, case as in the path */                         \
    FIELD(qint64, width, setWidth)                  /* pixels of the upright picture; of several, the last one's */    \
    FIELD(qint64, height, setHeight)                                                                                   \
    FIELD(QString, fileSize, setFileSize)           /* bytes, in plain decimals */                                     \
    FIELD(QString, fileCreationDate, setFileCreationDate)                                                              \
    FIELD(QString, fileContainerFolderName, setFileContainerFolderName)                                                \
    FIELD(QImage, thumbnailImg, setThumbnailImg)    /* reserved: never filled */                                       \
    FIELD(std::optional<QVariantMap>, metaInfoDict, setMetaInfoDict)
// clang-format on

namespace hazelmark {

/// The record of the one photo that is open. It is filled once, from the file on disk, and nothing changes it
/// afterwards. A file that is no picture gives a record too (width and height 0, no dictionary): whether it is accepted
/// is the caller's decision.
class PhotoFile
{
public:
    /// Opens the photo at `path`, which is a path and not a URL, and lets go of it again.
    explicit PhotoFile(const QString &path);
    /// Of a photo that was opened.
    explicit PhotoFile(const PhotoPtr &photo);

    /// The image-property dictionary (see Photo::dictionary()) of the file at `path`; absent when it has none.
    static std::optional<QVariantMap> exifDict(const QString &path);

    /// A second name for `filePath`: a path string too, and always the same one.
    const QString &fileURL() const { return m_filePath; }
    void setFileURL(const QString &path) { m_filePath = path; }

    /// As `fileCreationDate` shows it, in the user's locale: "Mar-05-2016 09:41:7 PM". The seconds are unpadded on
    /// purpose.
    static QString creationDateText(const QDateTime &created);

    /// The photo that the record was made of; null when there is none that can be read.
    const PhotoPtr &photo() const { return m_photo; }

    /// The file as it was when the record was made: whether it is still the same one is for the caller to compare.
    /// Absent when there was none.
    const std::optional<FileIdentity> &identity() const { return m_identity; }

    RecordFields fields() const;

    HAZELMARK_PHOTO_FILE_FIELDS(HAZELMARK_RECORD_FIELD)

private:
    PhotoFile(const QString &path, const PhotoPtr &photo);
    void readAttributes();

    PhotoPtr m_photo;
    std::optional<FileIdentity> m_identity;
};

} // namespace hazelmark
