#include "SafeFile.h"

#include "SamplePhotos.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <functional>

#include <fcntl.h>
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
    QByteArray native(const char *name) const { return QFile::encodeName(path(name)); }
    QString file(const char *name, const QByteArray &content)
    {
        return writeBytes(m_folder, QLatin1String(name), content);
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
    bool put(const char *name, const QByteArray &content) const
    {
        return bool(prepared(path(name), content).commit()) && readBytes(path(name)) == content;
    }
    struct stat statusOf(const char *name) const
    {
        struct stat status = {};
        ::stat(native(name).constData(), &status);
        return status;
    }

    QTemporaryDir m_folder;
    QString m_source = file("photo.jpg", "the photo");
    SourcePaths m_sources{{file("strokes.json", "[]")}, {m_source, FileIdentity::ofPath(m_source)}};
    FileDescriptor m_descriptor{::open(QFile::encodeName(m_folder.path()).constData(), O_PATH | O_DIRECTORY)};
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

} // namespace

TEST_F(SafeFiles, ANewFileHasAnOrdinaryModeAndAReplacedOneKeepsItsOwn)
{
    const mode_t before = ::umask(027);
    EXPECT_TRUE(put("new.png", "content"));
    ::umask(before);
    EXPECT_EQ(statusOf("new.png").st_mode & 07777, mode_t(0640));
    const bool isOthers = ::chown(native("new.png").constData(), 1234, 5678) == 0; // which only the superuser may
    ASSERT_EQ(::chmod(native("new.png").constData(), 0604), 0);
    EXPECT_TRUE(put("new.png", "other"));
    EXPECT_EQ(statusOf("new.png").st_mode & 07777, mode_t(0604));
    EXPECT_TRUE(!isOthers || (statusOf("new.png").st_uid == 1234 && statusOf("new.png").st_gid == 5678));
    EXPECT_EQ(entries().size(), 3);
}

TEST_F(SafeFiles, LinksAreFollowedAndStay)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("deep")));
    ASSERT_TRUE(QFile::link(QStringLiteral("deep/real.png"), path("link.png"))); // leads nowhere yet
    for (const QByteArray &content : {QByteArray("first"), QByteArray("second")}) {
        EXPECT_TRUE(put("link.png", content));
        EXPECT_TRUE(QFileInfo(path("link.png")).isSymLink());
        EXPECT_EQ(readBytes(path("deep/real.png")), content);
    }
}

TEST_F(SafeFiles, WhatMustNotBeReplacedIsRefused)
{
    QDir folder(m_folder.path());
    ASSERT_TRUE(folder.mkdir(QStringLiteral("folder.png")) && folder.mkdir(QStringLiteral("shut")));
    ASSERT_TRUE(QFile::link(m_source, path("soft.jpg")) && QFile::link(path("ring.png"), path("ring.png")));
    ASSERT_EQ(::link(native("photo.jpg").constData(), native("hard.jpg").constData()), 0);
    ASSERT_EQ(::mkfifo(native("pipe.png").constData(), 0600), 0);
    file("locked.png", "locked");
    ::chmod(native("locked.png").constData(), 0444);
    ::chmod(native("shut").constData(), 0555);
    const QStringList before = entries();
    for (const auto &[out, reason] : {std::pair(m_source, Reason::SameAsSource),
                                      {path("soft.jpg"), Reason::SameAsSource},
                                      {path("hard.jpg"), Reason::SameAsSource},
                                      {path("strokes.json"), Reason::SameAsSource},
                                      {path("folder.png"), Reason::IsFolder},
                                      {path("pipe.png"), Reason::NotARegularFile},
                                      {path("ring.png"), Reason::NotARegularFile},
                                      {path("locked.png"), Reason::ReadOnly},
                                      {path("none/out.png"), Reason::NoSuchFolder},
                                      {path("shut/out.png"), Reason::FolderNotWritable},
                                      {QString(), Reason::NotARegularFile}}) {
        const auto checked = SafeFile::checkDestination(out, m_sources);
        ASSERT_FALSE(bool(checked)) << out.toStdString();
        EXPECT_EQ(checked.failure().reason, reason) << checked.failure().sentence().toStdString();
        EXPECT_TRUE(checked.failure().sentence().contains(out));
        EXPECT_FALSE(bool(SafeFile::create(out, m_sources)));
        EXPECT_EQ(entries(), before);
    }
    ::chmod(native("shut").constData(), 0755);
}

TEST_F(SafeFiles, WhatIsNotPutInPlaceLeavesEverythingAsItWas)
{
    const QString out = file("out.png", "old");
    using Case = std::tuple<const char *, std::function<void()>, Reason>;
    for (const auto &[what, meanwhile, reason] :
         {Case{"read-only", [&] { ::chmod(QFile::encodeName(out).constData(), 0444); }, Reason::ReadOnly},
          Case{"another photo", [&] { file("photo.jpg", "another"); }, Reason::SourceChanged},
          Case{"no photo", [&] { QFile::remove(m_source); }, Reason::SourceChanged}}) {
        SafeFile safe = prepared(out, "half of the new o");
        meanwhile();
        const auto committed = safe.commit();
        ASSERT_FALSE(bool(committed)) << what;
        EXPECT_EQ(committed.failure().reason, reason) << what;
        EXPECT_EQ(readBytes(out), "old") << what;
        ::chmod(QFile::encodeName(out).constData(), 0644);
    }
    EncodeOptions options;
    options.format = WriteFormat::Jpeg;
    EXPECT_FALSE(bool(encodeSafely(QImage(70000, 1, QImage::Format_RGBX8888), options, out, {})));
    EXPECT_EQ(readBytes(out), "old");
    EXPECT_EQ(entries().size(), 2);
}

TEST_F(SafeFiles, NamesThatKilledProgramsLeftAreTakenAwayAndNoOthers)
{
    EXPECT_EQ(inChild([&] {
                  TemporaryName name, linked;
                  TemporaryName::openNamed(m_descriptor.get(), 0600, name);
                  const int file = TemporaryName::openUnnamed(m_descriptor.get());
                  ::_exit(file < 0 || linked.give(file, m_descriptor.get()) ? 0 : 1);
              }),
              0);
    ASSERT_GT(entries().size(), 2);
    file(".hazelmark-notes", "the name is of another length");
    TemporaryName another;
    const FileDescriptor written(TemporaryName::openNamed(m_descriptor.get(), 0600, another));
    ASSERT_TRUE(written);
    EXPECT_TRUE(put("out.png", "content"));
    EXPECT_EQ(entries().size(), 2 + 1 + 1 + 1) << "the sources, the other, the one in use, the new file";
    EXPECT_TRUE(another.renameTo("another.png")) << "it was in use";
}

TEST_F(SafeFiles, ASignalRemovesTheTemporaryName)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const int status = inChild([&] {
            ::signal(signal, SIG_DFL); // whoever started the tests may have it ignored
            SafeFile::handleSignals();
            TemporaryName name;
            if (TemporaryName::openNamed(m_descriptor.get(), 0600, name) >= 0 && entries().size() == 3)
                ::raise(signal);
            ::_exit(1);
        });
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        EXPECT_EQ(entries().size(), 2) << signal;
    }
}

} // namespace hazelmark
