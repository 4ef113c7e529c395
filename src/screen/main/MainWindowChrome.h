#pragma once

#include <QObject>
#include <QPointer>

class QScreen;

namespace hazelmark {

class ApplicationDelegate;
class SaveChangesSheet;
class Session;
class TitlebarWindow;

/// The main window around the screen: its title bar, the window's own buttons, and the question before it closes.
/// Main thread only.
class MainWindowChrome : public QObject
{
    Q_OBJECT

public:
    /// Gives the window its title bar. All outlive the chrome.
    MainWindowChrome(ApplicationDelegate &application, Session &session, TitlebarWindow &window);

    /// The desktop's own buttons have no place beside the window's: the window is without the desktop's frame, and by
    /// now it exists on a screen, whose colours are followed from here on.
    void hideWindowBtnsAfterDelay();
    void btnCloseWindowTapped();
    /// Leaves the person at the screen, to export from there.
    void btnSaveChangesTapped();
    void btnDontSaveChangesTapped();
    void btnCancelChangesTapped();
    void btnMinimizeWindowTapped();
    void btnZoomWindowTapped();

    bool isExportingWithAddingNewImage() const { return m_isExportingWithAddingNewImage; }
    void setIsExportingWithAddingNewImage(bool exporting) { m_isExportingWithAddingNewImage = exporting; }

signals:
    /// The window is on this screen now: other colours, and perhaps another backing scale.
    void screenChanged(QScreen *screen);

private:
    void takeDownSaveChanges();

    ApplicationDelegate &m_application;
    Session &m_session;
    TitlebarWindow &m_window;
    QPointer<SaveChangesSheet> m_windowSaveChanges;
    bool m_isExportingWithAddingNewImage = false;
};

} // namespace hazelmark
