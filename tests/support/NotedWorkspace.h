#pragma once

#include "ProcessWide.h"
#include "Workspace.h"

namespace hazelmark {

/// Starts nothing, and notes what it was to open or to start. It stands in for the desktop's while it lives.
struct NotedWorkspace : Workspace
{
    void openUrl(const QUrl &url, Completion completion) override
    {
        m_opened << (url.isLocalFile() ? url.fileName() : url.toString());
        if (completion)
            completion(m_succeeds);
    }
    void launch(const QString &program, const QStringList &arguments, Completion completion) override
    {
        m_launched << (QStringList(program) + arguments);
        completion(m_succeeds);
    }

    QStringList m_opened; ///< names of files, addresses
    QList<QStringList> m_launched;
    bool m_succeeds = true;
    ProcessWide<Workspace>::Replacement m_replacement{*this};
};

} // namespace hazelmark
