#include "PhotoFile.h"

#include "SamplePhotos.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace hazelmark {

TEST(Photo, IsReadFromOneOpenFileAndAgainOnlyWhileItIsTheSame)
{
    const QTemporaryDir folder;
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Bmp}) {
        const QString path = writePhoto(folder, format, richMetadata());
        const PhotoPtr photo = *Photo::open(path);
        EXPECT_EQ(PhotoFile(photo).fileSize(), QString::number(QFileInfo(path).size()));
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

} // namespace hazelmark
