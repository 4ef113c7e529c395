#include "TestFiles.h"

#include <QDir>

#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

using Reason = Failure::Reason;

class FileFailures : public FolderTest
{
protected:
    void expectBoth(const QString &path, Reason reason)
    {
        const auto info = readPictureInfo(path);
        const auto picture = decodePicture(path);
        ASSERT_FALSE(info);
        ASSERT_FALSE(picture);
        EXPECT_EQ(int(info.failure().reason), int(reason)) << info.failure().sentence().toStdString();
        EXPECT_EQ(int(picture.failure().reason), int(reason)) << picture.failure().sentence().toStdString();
        EXPECT_EQ(info.failure().path, path);
    }
};

TEST_F(FileFailures, WhatIsNoReadableFileIsNamed)
{
    expectBoth(pathOf(QStringLiteral("missing.jpg")), Reason::NoSuchFile);
    expectBoth(pathOf(QStringLiteral("missing/picture.jpg")), Reason::NoSuchFile);
    ASSERT_TRUE(QDir(pathOf({})).mkdir(QStringLiteral("folder.jpg")));
    expectBoth(pathOf(QStringLiteral("folder.jpg")), Reason::IsFolder);
    expectBoth(write(QStringLiteral("empty.png"), {}), Reason::Empty);
    const QString pipe = pathOf(QStringLiteral("pipe.jpg"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    expectBoth(pipe, Reason::NotARegularFile);
    ASSERT_TRUE(QFile::link(pathOf(QStringLiteral("nowhere")), pathOf(QStringLiteral("link.jpg"))));
    expectBoth(pathOf(QStringLiteral("link.jpg")), Reason::NoSuchFile);
}

TEST_F(FileFailures, FileWithoutReadPermissionIsNotReadable)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    const QString path = write(QStringLiteral("secret.jpg"), "x");
    ASSERT_TRUE(QFile::setPermissions(path, QFile::WriteOwner));
    expectBoth(path, Reason::NotReadable);
}

TEST_F(FileFailures, ContentThatIsNoPictureIsNotOneWhateverTheName)
{
    expectBoth(write(QStringLiteral("text.jpg"), "This is no photo.\n"), Reason::NotAPicture);
    expectBoth(write(QStringLiteral("zeros.png"), QByteArray(5000, '\0')), Reason::NotAPicture);
    expectBoth(write(QStringLiteral("byte.gif"), "G"), Reason::NotAPicture);
    expectBoth(write(QStringLiteral("page.bmp"), "<html><body>GIF89a</body></html>"), Reason::NotAPicture);
}

TEST_F(FileFailures, ContentDecidesNotTheName)
{
    const QByteArray png = encoded(makePicture(20, 10, QImage::Format_RGBX8888), optionsFor(WriteFormat::Png));
    const QString path = write(QStringLiteral("really-a-png.jpg"), png);
    const auto info = readPictureInfo(path);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->format, "png");
    EXPECT_TRUE(decodePicture(path));
}

TEST(Failure, SentenceIsOneLineThatNamesTheFileAndTheReason)
{
    const Failure failure{Reason::Truncated, QStringLiteral("/a/b.jpg"), QStringLiteral("premature\n end")};
    EXPECT_EQ(failure.sentence().toStdString(), "/a/b.jpg: its picture data is cut off (premature end).");
}

} // namespace hazelmark
