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
        const QString path = writePhoto(folder, WriteFormat::Jpeg, oriented(orientation));
        const PhotoFile photo(path);
        EXPECT_EQ(photo.width(), orientation >= 5 ? 30 : 40) << orientation;
        EXPECT_EQ(photo.height(), orientation >= 5 ? 40 : 30) << orientation;
        EXPECT_EQ(photo.fileName(), path.section(QLatin1Char('/'), -1));
        EXPECT_EQ(photo.fileContainerFolderName(), path.section(QLatin1Char('/'), -2, -2));
        EXPECT_EQ(photo.fileSize(), QString::number(readBytes(path).size()));
        EXPECT_EQ(photo.identity(), FileIdentity::ofPath(path));
        ASSERT_TRUE(photo.metaInfoDict());
        EXPECT_EQ(photo.metaInfoDict(), PhotoFile::exifDict(path));
    }
}

TEST(Photo, IsReadFromOneOpenFileAndAgainOnlyWhileItIsTheSame)
{
    const QTemporaryDir folder;
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Bmp}) {
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
    const QDateTime evening(QDate(2016, 3, 5), QTime(21, 41, 7));
    for (const auto &[language, time, text] : {std::tuple(QLocale::English, evening, "Mar-05-2016 09:41:7 PM"),
                                               {QLocale::English, evening.addSecs(3 * 3600), "Mar-06-2016 12:41:7 AM"},
                                               {QLocale::French, evening, "mars-05-2016 09:41:7 PM"}}) {
        QLocale::setDefault(QLocale(language));
        EXPECT_EQ(PhotoFile::creationDateText(time).toStdString(), text);
    }
    QLocale::setDefault(QLocale::system());
}

} // namespace hazelmark
