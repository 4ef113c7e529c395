#pragma once

#include "../support/Gate.h"
#include "../support/ScreenApplication.h"
#include "../support/Timers.h"
#include "MainScreenVC.h"
#include "NotificationCenter.h"
#include "PaintView.h"
#include "SettingsPanel.h"
#include "TitlebarWindow.h"
#include "UserDefaults.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace hazelmark {

/// The main screen in a window of 1300 × 800 points, with the photos and the notifications of the test's own. Loading
/// and rendering are the real ones unless `work` says otherwise before `start()`.
class ScreenFixture : public testing::Test
{
protected:
    ScreenFixture();
    ~ScreenFixture() override;

    void start();
    void openPhoto(QSize size = {600, 400});
    void post(QLatin1String name) { m_center.post(name); }
    void perform(MenuCommand command);

    /// A photo in a single colour, in a file of its own; its path.
    QString photo(const QString &name, QSize size, QColor color = Qt::red) const;
    QString file(const QString &name, const QByteArray &content) const;

    /// Drops the file and waits until it is the open photo.
    void open(const QString &path);
    /// Waits until as many previews as that, or more, have come into view in the whole test.
    void waitForPreviews(int shown);
    /// Drags the mouse over the canvas between two fractions of it; lets go unless told otherwise.
    void stroke(QPointF from, QPointF to, bool letGo = true);
    MainScreenView &view() const { return *m_screen->mainScreenView(); }
    PaintView &canvas() const { return *view().paintView; }
    SettingsPanel &panel() const { return m_screen->panel(); }
    void resizeWindow(QSize size);
    /// What the after-image view shows at a fraction of the photo.
    QColor shownAt(QPointF place) const;
    /// Coverage of the canvas, 0..255.
    int paintAt(QPointF place) const;
    /// The title or text of the sheet on show; empty when there is none.
    QString sheetText() const;
    /// Waits for a sheet and answers it; its text.
    QString answeredSheet();

    QTemporaryDir m_folder;
    NotificationCenter m_center;
    ProcessState m_state;
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("defaults.conf"))};
    ProcessWide<NotificationCenter>::Replacement m_replaceCenter{m_center};
    ProcessWide<ProcessState>::Replacement m_replaceState{m_state};
    ProcessWide<UserDefaults>::Replacement m_replaceDefaults{m_defaults};

    ScreenApplication m_application;
    Session::Work m_work;
    std::atomic<int> m_rendered = 0; ///< previews that were begun
    int m_shown = 0;                 ///< previews that came into view
    std::unique_ptr<TitlebarWindow> m_window;
    std::unique_ptr<MainScreenVC> m_screen;
};

} // namespace hazelmark
