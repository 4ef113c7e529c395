#include "FileAttributes.h"
#include "FileIdentity.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hazelmark {

TEST(FileAttributes, TellsSizeDateAndKindOfWhatALinkLeadsToAndTheRoomOfAVolume)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("naïve name.jpg"));
    const QString link = folder.filePath(QStringLiteral("link"));
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    const QDateTime before = QDateTime::currentDateTime().addSecs(-5);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(12345) && QFile::link(path, link));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &name : {link, folder.path(), pipe, QStringLiteral("/dev/null")}) {
        const auto attributes = FileAttributes::ofPath(name);
        ASSERT_TRUE(attributes) << name.toStdString();
        EXPECT_EQ(attributes->isRegularFile, name == link) << name.toStdString();
    }
    EXPECT_EQ(FileAttributes::ofPath(link)->size, 12345u);
    EXPECT_FALSE(FileAttributes::ofPath(link)->isImmutable);
    EXPECT_GT(FileAttributes::ofPath(link)->created, before);
    EXPECT_LE(FileAttributes::ofPath(link)->created, QDateTime::currentDateTime().addSecs(5));
    EXPECT_FALSE(FileAttributes::ofPath(QStringLiteral("/no/such/file")) || FileAttributes::ofPath(QString()));

    EXPECT_GT(availableBytes(folder.path()).value_or(0), 0U);
    EXPECT_FALSE(availableBytes(QStringLiteral("/no/such/folder")));
    EXPECT_FALSE(availableBytes(QStringLiteral("/proc"))) << "has no blocks of its own";
}

TEST(FileAttributes, TheIdentityOfAFileChangesWithWhateverIsDoneToIt)
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("photo")));
    const QByteArray other = QFile::encodeName(folder.filePath(QStringLiteral("other")));
    const auto now = [](const QByteArray &name) { return FileIdentity::ofPath(QFile::decodeName(name)); };
    const auto setTime = [](const QByteArray &name, time_t seconds, long nanoseconds) {
        const timespec times[2] = {{0, 0}, {seconds, nanoseconds}};
        return ::utimensat(AT_FDCWD, name.constData(), times, 0) == 0;
    };
    // The same content and time in both, so that each change is the only difference.
    for (const QByteArray &name : {path, other}) {
        QFile file(QFile::decodeName(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("pixels") == 6 && file.flush() &&
                    setTime(name, 7, 0));
        EXPECT_EQ(FileIdentity::ofDescriptor(file.handle()), now(name));
    }
    struct Change
    {
        const char *what;
        bool sameFile;
        std::function<bool()> make;
    };
    for (const auto &[what, sameFile, make] :
         {Change{"nanosecond", true, [&] { return setTime(path, 7, 1); }},
          Change{"second", true, [&] { return setTime(path, 8, 0); }},
          Change{"size", true, [&] { return ::truncate(path.constData(), 5) == 0 && setTime(path, 8, 0); }},
          Change{"back", true, [&] { return ::truncate(path.constData(), 6) == 0 && setTime(path, 7, 0); }},
          Change{"replaced", false, [&] { return ::rename(other.constData(), path.constData()) == 0; }}}) {
        const std::optional<FileIdentity> before = now(path);
        EXPECT_TRUE(make()) << what;
        EXPECT_NE(now(path), before) << what;
        EXPECT_EQ(now(path)->isSameFileAs(*before), sameFile) << what;
    }
    EXPECT_FALSE(now("/no/such/file"));
    EXPECT_FALSE(FileIdentity::ofDescriptor(-1));
}

} // namespace hazelmark
