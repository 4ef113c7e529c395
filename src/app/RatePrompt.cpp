#include "RatePrompt.h"

#include "AlertSheet.h"
#include "Bundle.h"
#include "SheetQueue.h"
#include "UserDefaults.h"
#include "Workspace.h"

#include <QTimer>
#include <QUrl>

#include <chrono>

namespace hazelmark {

namespace {

const QString kOpenedCount = QStringLiteral("appOpenedCount");
const QString kAnsweredVersion = QStringLiteral("appVersion");
constexpr int kLaunchesBeforePrompt = 6;
constexpr std::chrono::milliseconds kPromptDelay{200};
constexpr std::chrono::milliseconds kDeafTime{500};

QString bundleVersion()
{
    return Bundle::infoDictionary().value(QStringLiteral("CFBundleVersion")).toString();
}

} // namespace

RatePrompt::RatePrompt(WindowFinder mainWindow, StorePage storePage)
    : m_mainWindow(std::move(mainWindow))
    , m_storePage(std::move(storePage))
{
}

void RatePrompt::checkForRateupPopup()
{
    UserDefaults &defaults = UserDefaults::standardUserDefaults();
    const int count = defaults.integer(kOpenedCount);
    defaults.setInteger(kOpenedCount, count + 1);
    defaults.synchronize();
    const bool isAnswered = defaults.string(kAnsweredVersion) == bundleVersion();
    if (!isAnswered && count < kLaunchesBeforePrompt)
        return;
    if (!isAnswered)
        QTimer::singleShot(kPromptDelay, this, &RatePrompt::showAlertForRateApp);
    defaults.setInteger(kOpenedCount, 0);
    defaults.synchronize();
}

void RatePrompt::showAlertForRateApp()
{
    QWidget *window = m_mainWindow();
    if (m_alert || !window)
        return;
    // These texts are the same in every language.
    m_alert = new AlertSheet(QStringLiteral("Rate Us"),
                             QStringLiteral("If you enjoy using our app, would you like to rate us on app store?"),
                             QStringLiteral("YES"), QStringLiteral("NO"));
    m_alert->setIcon(QStringLiteral("info"));
    m_alert->setDeafFor(kDeafTime);
    connect(m_alert, &AlertSheet::finished, this, &RatePrompt::alertDidEndClose);
    SheetQueue::forWindow(*window).present(m_alert);
}

void RatePrompt::alertDidEndClose(int button)
{
    if (button == AlertSheet::Dismissed)
        return; // no answer: the prompt is due again
    if (button == AlertSheet::AlternateReturn) {
        storeAnswer();
        return;
    }
    Workspace::sharedWorkspace().openUrl(m_storePage(), [self = QPointer(this)](bool opened) {
        if (opened && self)
            self->storeAnswer();
    });
}

void RatePrompt::storeAnswer()
{
    UserDefaults::standardUserDefaults().setString(kAnsweredVersion, bundleVersion());
    UserDefaults::standardUserDefaults().synchronize();
}

} // namespace hazelmark
