#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <csignal>
#include <optional>

namespace hazelmark {

/// Turns the signals that end a program (interrupt, quit, terminate, hang up) into one from the event loop, so that the
/// program can end as if a person had ended it. A second one of the same kind takes the way that it had before: who is
/// in a hurry is not made to wait. One at a time in a process; main thread only.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

signals:
    void received();

private:
    int m_pipe[2] = {-1, -1}; ///< the reading end, the writing end
    std::optional<QSocketNotifier> m_notifier;
};

} // namespace hazelmark
