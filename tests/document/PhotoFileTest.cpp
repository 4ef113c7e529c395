#include "PhotoFile.h"

#include "SamplePhotos.h"

#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

TEST(PhotoFile, DescribesTheFileAndTheUprightPicture)
{
    const QTemporaryDir folder;
    for (const int orientation : {1, 3, 6, 8}) {
        MetadataBlocks blocks;
        blocks.exif = exifBlock({{"Exif.Image.Orientation", std::to_string(orientation).c_str()}});
        for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png}) {
            const QString path = writePhoto(folder, format, blocks);
            const PhotoFile photo(path);
            EXPECT_EQ(photo.width(), orientation >= 5 ? 30 : 40) << orientation;
            EXPECT_EQ(photo.height(), orientation >= 5 ? 40 : 30) << orientation;
            EXPECT_EQ(photo.fileURL(), path);
            EXPECT_EQ(photo.fileName(), path.section(QLatin1Char('/'), -1));
            EXPECT_EQ(photo.fileContainerFolderName(), path.section(QLatin1Char('/'), -2, -2));
            EXPECT_EQ(photo.fileSize(), QString::number(readBytes(path).size()));
            EXPECT_EQ(photo.identity(), FileIdentity::ofPath(path));
            ASSERT_TRUE(photo.metaInfoDict());
            EXPECT_EQ(photo.metaInfoDict()->value(QStringLiteral("Orientation")).toInt(), orientation);
            EXPECT_EQ(photo.metaInfoDict()->value(QStringLiteral("PixelWidth")).toInt(), 40);
        }
    }
}

TEST(Photo, IsReadFromOneOpenFileAndAgainOnlyWhileItIsTheSame)
{
    const QTemporaryDir folder;
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff, WriteFormat::Bmp}) {
        const QString path = writePhoto(folder, format, richMetadata());
        const PhotoPtr photo = *Photo::open(path);
        QFile::remove(path);
        EXPECT_TRUE(photo->decode()) << "from the file that is open already";
        EXPECT_EQ(photo->carriedMetadata({40, 30}, WriteFormat::Png).exif.isEmpty(), format == WriteFormat::Bmp);
        EXPECT_EQ(photo->decode().failure().reason, Failure::Reason::NoSuchFile) << "it was let go of";

        writePhoto(folder, format, richMetadata());
        EXPECT_EQ(photo->decode().failure().reason, Failure::Reason::SourceChanged);
        const PhotoPtr another = *Photo::open(path);
        another->release();
        EXPECT_TRUE(another->decode({20, 15}) && another->decode()) << "opened again each time";
    }
}

TEST(PhotoFile, TheCreationDateHasUnpaddedSecondsAndTheUsersWords)
{
    const QDateTime time(QDate(2016, 3, 5), QTime(21, 41, 7));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(PhotoFile::creationDateText(time), QStringLiteral("Mar-05-2016 09:41:7 PM"));
    EXPECT_EQ(PhotoFile::creationDateText(time.addSecs(3 * 3600)), QStringLiteral("Mar-06-2016 12:41:7 AM"));
    QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    EXPECT_EQ(PhotoFile::creationDateText(time), QStringLiteral("mars-05-2016 09:41:7 PM"));
    QLocale::setDefault(QLocale::system());
}

TEST(PhotoFile, WhatIsNoPictureStillGivesARecord)
{
    const QTemporaryDir folder;
    const PhotoFile text(writeBytes(folder, QStringLiteral("notes.jpg"), "not a picture"));
    EXPECT_EQ(text.width(), 0);
    EXPECT_EQ(text.height(), 0);
    EXPECT_FALSE(text.metaInfoDict());
    EXPECT_EQ(text.fileSize(), QStringLiteral("13"));
    EXPECT_FALSE(text.fileCreationDate().isNull());

    const PhotoFile missing(QStringLiteral("/missing"));
    EXPECT_EQ(missing.fileSize(), QStringLiteral("0"));
    EXPECT_TRUE(missing.fileCreationDate().isNull());
    EXPECT_EQ(missing.fileContainerFolderName(), QStringLiteral("/"));
    EXPECT_FALSE(PhotoFile::exifDict(QStringLiteral("/missing")));
    EXPECT_FALSE(missing.fields().at(6).second.isValid());
}

} // namespace hazelmark
