#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QMessageBox;
class QUrl;
class QWidget;

namespace hazelmark {

/// Asks for a rating: on every seventh launch, until the person has answered for this version of the program.
class RatePrompt : public QObject
{
    Q_OBJECT

public:
    using WindowFinder = std::function<QWidget *()>;
    using StorePage = std::function<QUrl()>;

    RatePrompt(WindowFinder mainWindow, StorePage storePage);

    /// Counts this launch and schedules the prompt when it is due.
    void checkForRateupPopup();
    /// Shows the prompt as a sheet of the main window, unless it is up or waiting already.
    void showAlertForRateApp();

private:
    void alertDidEndClose(bool alternateButton);
    void storeAnswer();

    WindowFinder m_mainWindow;
    StorePage m_storePage;
    QPointer<QMessageBox> m_alert;
};

} // namespace hazelmark
