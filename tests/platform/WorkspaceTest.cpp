#include "Workspace.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

using namespace hazelmark;

// A shell script stands in for the desktop's opener and writes down what it was asked to open.
TEST(WorkspaceTest, OpensAddressesWithoutWaitingAndAnswersOnce)
{
    // The last line of the opener (empty: there is none), the file to open, whether that opens, what the opener saw.
    for (const auto &[opener, path, opens, seen] :
         {std::tuple{"exit 0", "/tmp/50 % of ü.jpg", true, "file:///tmp/50%20%25%20of%20%C3%BC.jpg"},
          {"exit 3", "/tmp/a", false, "file:///tmp/a"},
          {"", "/tmp/a", false, ""},
          {"exit 0", "", false, ""}}) {
        const QTemporaryDir folder;
        const QString log = folder.filePath(QStringLiteral("opened"));
        QFile script(folder.filePath(QStringLiteral("opener")));
        if (*opener && script.open(QIODevice::WriteOnly))
            script.write("#!/bin/sh\nprintf '%s' \"$1\" > '" + log.toUtf8() + "'\n" + opener + "\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

        std::optional<bool> answer;
        const auto note = [&](bool opened) {
            EXPECT_FALSE(answer.has_value()) << "answered twice";
            answer = opened;
        };
        Workspace workspace(script.fileName());
        workspace.openFile(QString::fromUtf8(path), note);
        EXPECT_TRUE(!opens || !answer) << "it waited for the opener";
        QElapsedTimer timer;
        for (timer.start(); !answer && timer.elapsed() < 20000;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        EXPECT_EQ(answer, opens) << seen;
        QFile opened(log);
        EXPECT_EQ(opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray(), seen);
    }
}
