#include "Workspace.h"

#include "Log.h"
#include "ProcessWide.h"

#include <QFileInfo>
#include <QProcess>
#include <QTimer>

#include <chrono>
#include <memory>

#include <unistd.h>

namespace hazelmark {

namespace {

// A program that still runs after this time is the viewer itself, or waits for it: it has opened the file.
constexpr std::chrono::seconds kOpenerAnswer{5};

// Calls the completion once, whoever comes first.
class Answer
{
public:
    explicit Answer(Workspace::Completion completion)
        : m_completion(std::move(completion))
    {
    }
    void give(bool opened)
    {
        if (const Workspace::Completion completion = std::exchange(m_completion, {}))
            completion(opened);
    }

private:
    Workspace::Completion m_completion;
};

} // namespace

Workspace::Workspace(const QString &opener)
    : m_opener(opener)
{
}

Workspace::~Workspace() = default;

Workspace &Workspace::sharedWorkspace()
{
    return ProcessWide<Workspace>::instance();
}

void Workspace::openFile(const QString &path, Completion completion)
{
    openUrl(path.isEmpty() ? QUrl() : QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()), std::move(completion));
}

void Workspace::openUrl(const QUrl &url, Completion completion)
{
    if (url.isEmpty() || !url.isValid()) {
        if (completion)
            completion(false);
        return;
    }
    launch(m_opener, {QString::fromLatin1(url.toEncoded())}, std::move(completion));
}

void Workspace::launch(const QString &program, const QStringList &arguments, Completion completion)
{
    const auto answer = std::make_shared<Answer>(std::move(completion));
    // Deliberately without a parent: a process object that is destroyed ends its process, and the viewer has to live
    // on when this program ends. The object goes when the opener does.
    auto *process = new QProcess;
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->setChildProcessModifier([] { ::setsid(); }); // a Ctrl+C in our terminal is not meant for the viewer
    QObject::connect(process, &QProcess::finished, process, [=](int exitCode, QProcess::ExitStatus status) {
        const bool opened = status == QProcess::NormalExit && exitCode == 0;
        if (!opened)
            qCWarning(lcPlatform) << program << "opened nothing:" << arguments;
        answer->give(opened);
        process->deleteLater();
    });
    QObject::connect(process, &QProcess::errorOccurred, process, [=](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // `finished` follows
        qCWarning(lcPlatform) << "Could not start" << process->program() << process->errorString();
        answer->give(false);
        process->deleteLater();
    });
    QTimer::singleShot(kOpenerAnswer, process, [answer] { answer->give(true); });
    process->start(program, arguments);
}

} // namespace hazelmark
