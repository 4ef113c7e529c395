#include "TerminationSignals.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace hazelmark {

namespace {

constexpr std::array kSignals{SIGINT, SIGQUIT, SIGTERM, SIGHUP};

// What the handler reads: it may use neither memory nor locks.
std::array<struct sigaction, kSignals.size()> previousActions;
int writingEnd = -1;

void restore(size_t index)
{
    ::sigaction(kSignals[index], &previousActions[index], nullptr);
}

void tell(int signal)
{
    const int savedErrno = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(writingEnd, &byte, 1); // a full pipe has told already
    for (size_t i = 0; i < kSignals.size(); ++i) {
        if (kSignals[i] == signal)
            restore(i);
    }
    errno = savedErrno;
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    Q_ASSERT(writingEnd < 0);
    if (::pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep the way that they had
    writingEnd = m_pipe[1];
    m_notifier.emplace(m_pipe[0], QSocketNotifier::Read);
    connect(&*m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(m_pipe[0], &byte, 1) == 1) {
        }
        emit received();
    });
    struct sigaction action = {};
    action.sa_handler = tell;
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &action, &previousActions[i]);
        if (previousActions[i].sa_handler == SIG_IGN) // so that nohup keeps its promise
            restore(i);
    }
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    for (size_t i = 0; i < kSignals.size(); ++i)
        restore(i);
    writingEnd = -1;
    m_notifier.reset();
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

} // namespace hazelmark
