#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QUrl;
class QWidget;

namespace hazelmark {

class AlertSheet;

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
    void alertDidEndClose(int button);
    void storeAnswer();

    WindowFinder m_mainWindow;
    StorePage m_storePage;
    QPointer<AlertSheet> m_alert;
};

} // namespace hazelmark
