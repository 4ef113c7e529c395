#include "Workspace.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

using namespace hazelmark;

namespace {

/// A shell script that stands in for the desktop's opener and writes down what it was asked to open.
class WorkspaceTest : public testing::Test
{
protected:
    QString opener(const QByteArray &lastLine)
    {
        const QString path = m_folder.filePath(QStringLiteral("opener"));
        QFile script(path);
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s' \"$1\" > '" + log().toUtf8() + "'\n" + lastLine + "\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return path;
    }
    QString log() const { return m_folder.filePath(QStringLiteral("opened")); }
    QString opened() const
    {
        QFile file(log());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    Workspace::Completion note()
    {
        return [this](bool opened) {
            EXPECT_FALSE(m_answer.has_value()) << "answered twice";
            m_answer = opened;
        };
    }
    std::optional<bool> answer()
    {
        QElapsedTimer timer;
        for (timer.start(); !m_answer && timer.elapsed() < 20000;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return m_answer;
    }

    QTemporaryDir m_folder;
    std::optional<bool> m_answer;
};

} // namespace

TEST_F(WorkspaceTest, OpensAFileByItsAddressWithoutWaiting)
{
    Workspace workspace(opener("exit 0"));
    workspace.openFile(QStringLiteral("/tmp/50 % of ü.jpg"), note());
    EXPECT_FALSE(m_answer.has_value()) << "it waited for the opener";
    EXPECT_EQ(answer(), true);
    EXPECT_EQ(opened(), QStringLiteral("file:///tmp/50%20%25%20of%20%C3%BC.jpg"));
}

TEST_F(WorkspaceTest, SaysThatNothingOpened)
{
    Workspace workspace(opener("exit 3"));
    workspace.openUrl(QUrl(QStringLiteral("appstream://hazelmark")), note());
    EXPECT_EQ(answer(), false);
    EXPECT_EQ(opened(), QStringLiteral("appstream://hazelmark"));
}

TEST_F(WorkspaceTest, AMissingOpenerIsAnAnswerToo)
{
    Workspace workspace(m_folder.filePath(QStringLiteral("none")));
    workspace.openUrl(QUrl(QStringLiteral("https://localhost")), note());
    EXPECT_EQ(answer(), false);
}

TEST_F(WorkspaceTest, AnEmptyPathOpensNothing)
{
    Workspace workspace(opener("exit 0"));
    workspace.openFile(QString(), note());
    EXPECT_EQ(answer(), false);
    EXPECT_FALSE(QFile::exists(log()));
}
