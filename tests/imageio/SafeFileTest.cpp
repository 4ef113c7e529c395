#include "SafeFile.h"

#include "SamplePhotos.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
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
        QFile temporary((*safe).temporaryPath());
        EXPECT_TRUE(temporary.open(QIODevice::WriteOnly));
        temporary.write(content);
        return std::move(*safe);
    }
    void put(const QString &out, const QByteArray &content) { EXPECT_TRUE(bool(prepared(out, content).commit())); }

    QTemporaryDir m_folder;
    QString m_source = file("photo.jpg", "the photo");
    SourcePaths m_sources{{file("strokes.json", "[]")}, {m_source, FileIdentity::ofPath(m_source)}};
};

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

TEST_F(SafeFiles, ASignalRemovesTheTemporaryFile)
{
    const pid_t child = ::fork();
    if (child == 0) {
        SafeFile::removeTemporariesOnSignals();
        auto safe = SafeFile::create(path("out.png"), m_sources);
        ::raise(SIGTERM);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_EQ(entries().size(), 2);
}

} // namespace hazelmark
