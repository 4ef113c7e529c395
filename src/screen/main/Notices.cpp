#include "Notices.h"

#include "CalloutWindow.h"
#include "MainScreenView.h"
#include "SummaryBar.h"

#include <chrono>

namespace hazelmark {

namespace {

constexpr std::chrono::seconds kReadingTime{15};

} // namespace

Notices::Notices(MainScreenView &view)
    : QObject(&view)
    , m_view(view)
    , m_read(this)
{
    m_read.setSingleShot(true);
    m_read.setInterval(kReadingTime);
    connect(&m_read, &QTimer::timeout, this, [this] {
        if (m_view.vwBottom->exportText() == m_said)
            m_view.vwBottom->clearExport();
    });
}

void Notices::say(const QString &text)
{
    if (m_callout)
        m_callout->close();
    if (m_view.vwBottom->isVisible()) {
        m_view.vwBottom->showMessage(text);
        m_said = text;
        m_read.start();
        return;
    }
    m_callout = new CalloutWindow(text, m_view.window());
    m_callout->showBelow(*m_view.vwTopContainer);
}

} // namespace hazelmark
