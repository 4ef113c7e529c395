#include "SafeFile.h"

#include "SamplePhotos.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <fcntl.h>
#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hazelmark {

using Reason = Failure::Reason;

namespace {

class SafeFiles : public ::testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }
    QString file(const char *name, const QByteArray &content)
    {
        return writeBytes(m_folder, QLatin1String(name), content);
    }

    void expectRefused(const QString &out, Reason reason)
    {
        const QStringList before = entries();
        const auto checked = SafeFile::checkDestination(out, m_sources);
        ASSERT_FALSE(bool(checked)) << out.toStdString();
        EXPECT_EQ(checked.failure().reason, reason) << checked.failure().sentence().toStdString();
        EXPECT_TRUE(checked.failure().sentence().contains(out));
        EXPECT_FALSE(bool(SafeFile::create(out, m_sources)));
        EXPECT_EQ(entries(), before);
    }

    QStringList entries() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    /// With the content, ready to be committed.
    SafeFile prepared(const QString &out, const QByteArray &content) const
    {
        auto safe = SafeFile::create(out, m_sources);
        EXPECT_EQ(::write(safe->descriptor(), content.constData(), size_t(content.size())), content.size());
        return std::move(*safe);
    }
    void put(const QString &out, const QByteArray &content) { EXPECT_TRUE(bool(prepared(out, content).commit())); }

    QTemporaryDir m_folder;
    QString m_source = file("photo.jpg", "the photo");
    SourcePaths m_sources{{file("strokes.json", "[]")}, {m_source, FileIdentity::ofPath(m_source)}};
};

/// What the child does must not return. How it ended, as waitpid() says.
template <typename Body>
int inChild(const Body &body)
{
    const pid_t child = ::fork();
    if (child == 0)
        body();
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status;
}

mode_t modeOf(const QString &path)
{
    struct stat status = {};
    ::stat(QFile::encodeName(path).constData(), &status);
    return status.st_mode & 0777;
}

} // namespace

TEST_F(SafeFiles, ANewFileHasAnOrdinaryModeAndAReplacedOneKeepsIts)
{
    const mode_t before = ::umask(027);
    put(path("new.png"), "content");
    ::umask(before);
    EXPECT_EQ(readBytes(path("new.png")), "content");
    EXPECT_EQ(modeOf(path("new.png")), 0640u);
    ::chmod(QFile::encodeName(path("new.png")).constData(), 0604);
    put(path("new.png"), "other");
    EXPECT_EQ(readBytes(path("new.png")), "other");
    EXPECT_EQ(modeOf(path("new.png")), 0604u);
    EXPECT_EQ(entries().size(), 3);
}

TEST_F(SafeFiles, WithoutCommitNothingHasHappened)
{
    const QString out = file("out.png", "old");
    prepared(out, "half of the new o");
    EXPECT_EQ(readBytes(out), "old");
    EXPECT_EQ(entries().size(), 3);
}

TEST_F(SafeFiles, LinksAreFollowedAndStay)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("deep")));
    ASSERT_TRUE(QFile::link(QStringLiteral("deep/real.png"), path("link.png"))); // leads nowhere yet
    for (const QByteArray &content : {QByteArray("first"), QByteArray("second")}) {
        put(path("link.png"), content);
        EXPECT_TRUE(QFileInfo(path("link.png")).isSymLink());
        EXPECT_EQ(readBytes(path("deep/real.png")), content);
    }
}

TEST_F(SafeFiles, WhatMustNotBeReplacedIsRefused)
{
    expectRefused(m_source, Reason::SameAsSource);
    ASSERT_TRUE(QFile::link(m_source, path("soft.jpg")));
    expectRefused(path("soft.jpg"), Reason::SameAsSource);
    ASSERT_EQ(::link(QFile::encodeName(m_source).constData(), QFile::encodeName(path("hard.jpg")).constData()), 0);
    expectRefused(path("hard.jpg"), Reason::SameAsSource);
    expectRefused(path("strokes.json"), Reason::SameAsSource);

    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("folder.png")));
    expectRefused(path("folder.png"), Reason::IsFolder);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path("pipe.png")).constData(), 0600), 0);
    expectRefused(path("pipe.png"), Reason::NotARegularFile);
    expectRefused(QStringLiteral("/dev/null"), Reason::NotARegularFile);
    ASSERT_TRUE(QFile::link(path("ring.png"), path("ring.png")));
    expectRefused(path("ring.png"), Reason::NotARegularFile);

    const QString locked = file("locked.png", "locked");
    ::chmod(QFile::encodeName(locked).constData(), 0444);
    expectRefused(locked, Reason::ReadOnly);

    expectRefused(path("none/out.png"), Reason::NoSuchFolder);
    expectRefused(path("photo.jpg/out.png"), Reason::NoSuchFolder);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("shut")));
    ::chmod(QFile::encodeName(path("shut")).constData(), 0555);
    expectRefused(path("shut/out.png"), Reason::FolderNotWritable);
    ::chmod(QFile::encodeName(path("shut")).constData(), 0755);
}

TEST_F(SafeFiles, AFileThatBecameReadOnlyMeanwhileStays)
{
    const QString out = file("out.png", "old");
    SafeFile safe = prepared(out, "new");
    ::chmod(QFile::encodeName(out).constData(), 0444);
    EXPECT_FALSE(bool(safe.commit()));
    EXPECT_EQ(readBytes(out), "old");
}

TEST_F(SafeFiles, NothingIsPutInPlaceOfAPhotoThatChangedMeanwhile)
{
    const QString out = file("out.png", "old");
    SafeFile safe = prepared(out, "new");
    file("photo.jpg", "another photo");
    const auto committed = safe.commit();
    ASSERT_FALSE(bool(committed));
    EXPECT_EQ(committed.failure().reason, Reason::SourceChanged);
    EXPECT_EQ(committed.failure().path, m_source);
    EXPECT_EQ(readBytes(out), "old");
}

TEST_F(SafeFiles, WhatAnEncoderRefusesIsToldOfTheFileThatWasAskedFor)
{
    const QString out = file("out.jpg", "old");
    EncodeOptions options;
    options.format = WriteFormat::Jpeg;
    const auto written = encodeSafely(QImage(70000, 1, QImage::Format_RGBX8888), options, out, m_sources);
    ASSERT_FALSE(bool(written));
    EXPECT_EQ(written.failure().path, out);
    EXPECT_EQ(readBytes(out), "old");
    EXPECT_EQ(entries().size(), 3);
}

TEST_F(SafeFiles, TheOwnerAndTheGroupAreKeptAndAGroupThatIsNotGainsNothing)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only the superuser may give files away";
    const QString out = file("out.png", "old");
    const QByteArray native = QFile::encodeName(out);
    ::chmod(QFile::encodeName(m_folder.path()).constData(), 0777);
    const auto expect = [&](uid_t owner, gid_t group, mode_t mode) {
        struct stat status = {};
        ASSERT_EQ(::stat(native.constData(), &status), 0);
        EXPECT_EQ(readBytes(out), "new");
        EXPECT_EQ(status.st_uid, owner);
        EXPECT_EQ(status.st_gid, group);
        EXPECT_EQ(status.st_mode & 07777, mode);
    };
    ASSERT_TRUE(::chown(native.constData(), 1234, 5678) == 0 && ::chmod(native.constData(), 0664) == 0);
    put(out, "new");
    expect(1234, 5678, 0664);
    const int ended = inChild([&] {
        const bool dropped = ::setgroups(0, nullptr) == 0 && ::setgid(1234) == 0 && ::setuid(1234) == 0;
        ::_exit(dropped && prepared(out, "new").commit() ? 0 : 1);
    });
    EXPECT_EQ(ended, 0);
    expect(1234, 1234, 0644);
}

TEST_F(SafeFiles, NamesThatKilledProgramsLeftAreTakenAwayAndNoOthers)
{
    const FileDescriptor folder(::open(QFile::encodeName(m_folder.path()).constData(), O_PATH | O_DIRECTORY));
    const int ended = inChild([&] {
        TemporaryName name;
        TemporaryName linked;
        TemporaryName::openNamed(folder.get(), 0600, name);
        const int file = TemporaryName::openUnnamed(folder.get());
        ::_exit(file < 0 || linked.give(file, folder.get()) ? 0 : 1);
    });
    ASSERT_EQ(ended, 0);
    ASSERT_GT(entries().size(), 2);
    file(".hazelmark-notes", "the name is of another length");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral(".hazelmark-folder")));
    ASSERT_TRUE(QFile::link(path("photo.jpg"), path(".hazelmark-linked")));
    TemporaryName another;
    const FileDescriptor written(TemporaryName::openNamed(folder.get(), 0600, another));
    ASSERT_TRUE(written);
    put(path("out.png"), "content");
    EXPECT_EQ(entries().size(), 2 + 3 + 1 + 1) << "the sources, the three others, the one in use, the new file";
    EXPECT_TRUE(another.renameTo("another.png")) << "it was in use";
}

TEST_F(SafeFiles, ASignalRemovesTheTemporaryName)
{
    const FileDescriptor folder(::open(QFile::encodeName(m_folder.path()).constData(), O_PATH | O_DIRECTORY));
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        const int status = inChild([&] {
            const rlimit none = {0, 0};
            ::setrlimit(RLIMIT_CORE, &none);
            SafeFile::handleSignals();
            TemporaryName name;
            if (TemporaryName::openNamed(folder.get(), 0600, name) >= 0 && entries().size() == 3)
                ::raise(signal);
            ::_exit(1);
        });
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_EQ(entries().size(), 2) << signal;
    }
}

} // namespace hazelmark
