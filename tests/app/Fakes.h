#pragma once

#include "../support/NotedWorkspace.h"
#include "Bundle.h"
#include "NotificationCenter.h"
#include "ProcessState.h"
#include "Screen.h"
#include "UserDefaults.h"
#include "UserSession.h"
#include "ViewController.h"

#include <QTemporaryDir>
#include <QWidget>

namespace hazelmark {

struct FakeUserSession : UserSession
{
    QStringList preferredLanguages() const override { return m_languages; }

    QStringList m_languages{QStringLiteral("en")};
};

struct FakeScreen : Screen
{
    QRectF visibleFrame() const override { return m_visibleFrame; }
    QPointF origin() const override { return m_visibleFrame.topLeft() - QPointF(0, 24); }

    QRectF m_visibleFrame{0, 24, 1600, 1000}; ///< below a panel
};

struct FakeScreenController : ViewController
{
    QWidget *view() override { return m_view; }

    QWidget *m_view = new QWidget; ///< the window owns it once it is shown in one
};

/// A desktop of the tests' own: nothing outside the process is read, written or opened.
class FakeDesktop
{
public:
    /// Notes the posts of `names` from here on, and of no other.
    void observe(const QStringList &names)
    {
        m_tokens.clear();
        m_posted.clear();
        for (const QString &name : names)
            m_tokens.push_back(m_center.addObserver(name, [this, name](const auto &) { m_posted << name; }));
    }

    QTemporaryDir m_folder;
    NotificationCenter m_center;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    FakeUserSession m_session;
    FakeScreen m_screen;
    NotedWorkspace m_workspace;
    ProcessState m_state;
    QStringList m_posted;

private:
    std::vector<NotificationCenter::Token> m_tokens;
    ProcessWide<NotificationCenter>::Replacement m_replaceCenter{m_center};
    ProcessWide<UserDefaults>::Replacement m_replaceDefaults{m_defaults};
    ProcessWide<UserSession>::Replacement m_replaceSession{m_session};
    ProcessWide<Screen>::Replacement m_replaceScreen{m_screen};
    ProcessWide<ProcessState>::Replacement m_replaceState{m_state};
};

} // namespace hazelmark
