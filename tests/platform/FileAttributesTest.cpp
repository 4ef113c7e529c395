#include "FileAttributes.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace hazelmark {

TEST(FileAttributes, TellsSizeDateAndKindOfWhatALinkLeadsTo)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("naïve name.jpg"));
    const QString link = folder.filePath(QStringLiteral("link"));
    const QDateTime before = QDateTime::currentDateTime().addSecs(-5);
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(12345, 'x'));
    }
    ASSERT_TRUE(QFile::link(path, link));

    const auto attributes = FileAttributes::ofPath(link);
    ASSERT_TRUE(attributes);
    EXPECT_EQ(attributes->size, 12345u);
    EXPECT_TRUE(attributes->isRegularFile);
    EXPECT_FALSE(attributes->isImmutable);
    EXPECT_GT(attributes->created, before);
    EXPECT_LT(attributes->created, before.addSecs(60));
}

TEST(FileAttributes, AFolderAPipeAndADeviceAreNoRegularFilesAndNothingHasNone)
{
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {folder.path(), pipe, QStringLiteral("/dev/null")}) {
        const auto attributes = FileAttributes::ofPath(path);
        ASSERT_TRUE(attributes) << path.toStdString();
        EXPECT_FALSE(attributes->isRegularFile) << path.toStdString();
    }
    EXPECT_FALSE(FileAttributes::ofPath(QStringLiteral("/no/such/file")));
    EXPECT_FALSE(FileAttributes::ofPath(QString()));
}

TEST(FileAttributes, AVolumeSaysHowMuchRoomItHas)
{
    const QTemporaryDir folder;
    const std::optional<quint64> room = availableBytes(folder.path());
    ASSERT_TRUE(room);
    EXPECT_GT(*room, 0U);
    EXPECT_FALSE(availableBytes(QStringLiteral("/no/such/folder")));
    EXPECT_FALSE(availableBytes(QStringLiteral("/proc"))) << "has no blocks of its own";
}

} // namespace hazelmark
