#include "Notices.h"

#include "CalloutWindow.h"
#include "MainScreenView.h"
#include "SummaryBar.h"

#include <QTimer>

#include <chrono>

namespace hazelmark {

namespace {

constexpr std::chrono::seconds kReadingTime{15};

} // namespace

Notices::Notices(MainScreenView &view)
    : QObject(&view)
    , m_view(view)
{
}

void Notices::say(const QString &text)
{
    if (m_callout)
        m_callout->close();
    if (m_view.vwBottom->isVisible()) {
        m_view.vwBottom->showMessage(text);
        QTimer::singleShot(kReadingTime, m_view.vwBottom, [bar = m_view.vwBottom, text] {
            if (bar->exportText() == text)
                bar->clearExport();
        });
        return;
    }
    m_callout = new CalloutWindow(text, m_view.window());
    m_callout->showBelow(*m_view.vwTopContainer);
}

} // namespace hazelmark
