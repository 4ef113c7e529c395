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
    for (const QString &name : {link, folder.path(), pipe})
        EXPECT_EQ(FileAttributes::ofPath(name).value().isRegularFile, name == link) << name.toStdString();
    EXPECT_EQ(FileAttributes::ofPath(link)->size, 12345u);
    EXPECT_GT(FileAttributes::ofPath(link)->created, before);
    EXPECT_FALSE(FileAttributes::ofPath(QStringLiteral("/no/such/file")));
    EXPECT_GT(availableBytes(folder.path()).value_or(0), 0U);
    EXPECT_FALSE(availableBytes(QStringLiteral("/proc"))) << "has no blocks of its own";
}

TEST(FileAttributes, TheIdentityOfAFileChangesWithWhateverIsDoneToIt)
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("photo")));
    const auto now = [](const QByteArray &name) { return FileIdentity::ofPath(QFile::decodeName(name)); };
    const auto setTime = [](const QByteArray &name, time_t seconds, long nanoseconds) {
        const timespec times[2] = {{0, 0}, {seconds, nanoseconds}};
        return ::utimensat(AT_FDCWD, name.constData(), times, 0) == 0;
    };
    QFile file(QFile::decodeName(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("pixels") == 6 && file.flush() && setTime(path, 7, 0));
    EXPECT_EQ(FileIdentity::ofDescriptor(file.handle()), now(path));
    // Each is the only difference.
    const std::function<bool()> changes[]{[&] { return setTime(path, 7, 1); },
                                          [&] { return ::truncate(path.constData(), 5) == 0 && setTime(path, 7, 1); },
                                          [&] { return ::truncate(path.constData(), 6) == 0 && setTime(path, 7, 0); },
                                          [&] {
                                              const QByteArray copy = path + '2';
                                              return file.copy(QFile::decodeName(copy)) && setTime(copy, 7, 0) &&
                                                     ::rename(copy.constData(), path.constData()) == 0;
                                          }};
    for (const auto &change : changes) {
        const std::optional<FileIdentity> before = now(path);
        EXPECT_TRUE(change());
        EXPECT_NE(now(path), before) << &change - changes;
        EXPECT_EQ(now(path)->isSameFileAs(*before), &change != &changes[3]);
    }
    EXPECT_FALSE(now("/no/such/file"));
}

} // namespace hazelmark
