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
    struct Case
    {
        const char *opener; ///< its last line; null: there is none
        QString path;
        QUrl url; ///< where no path is given
        bool opens;
        const char *seen;
    };
    for (const Case &c :
         {Case{"exit 0", QStringLiteral("/tmp/50 % of ü.jpg"), {}, true, "file:///tmp/50%20%25%20of%20%C3%BC.jpg"},
          Case{"exit 3", {}, QUrl(QStringLiteral("appstream://hazelmark")), false, "appstream://hazelmark"},
          Case{nullptr, {}, QUrl(QStringLiteral("https://localhost")), false, ""}, Case{"exit 0", {}, {}, false, ""}}) {
        const QTemporaryDir folder;
        const QString log = folder.filePath(QStringLiteral("opened"));
        QFile script(folder.filePath(QStringLiteral("opener")));
        ASSERT_TRUE(!c.opener || script.open(QIODevice::WriteOnly));
        if (c.opener)
            script.write("#!/bin/sh\nprintf '%s' \"$1\" > '" + log.toUtf8() + "'\n" + c.opener + "\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

        std::optional<bool> answer;
        const auto note = [&](bool opened) {
            EXPECT_FALSE(answer.has_value()) << "answered twice";
            answer = opened;
        };
        Workspace workspace(script.fileName());
        c.url.isEmpty() ? workspace.openFile(c.path, note) : workspace.openUrl(c.url, note);
        EXPECT_TRUE(!c.opens || !answer) << "it waited for the opener";
        QElapsedTimer timer;
        for (timer.start(); !answer && timer.elapsed() < 20000;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        EXPECT_EQ(answer, c.opens) << c.seen;
        QFile opened(log);
        EXPECT_EQ(opened.open(QIODevice::ReadOnly), *c.seen != 0);
        EXPECT_EQ(opened.isOpen() ? opened.readAll() : QByteArray(), c.seen);
    }
}
