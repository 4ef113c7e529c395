#pragma once

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace hazelmark {

/// Runs work off the main thread and brings its results back to it. Work of one priority begins in the order in which
/// it came; with one thread it ends in that order too.
///
/// When the queue is destroyed, what has not begun is left out, what runs is waited for, and no result arrives any
/// more. Main thread only.
class WorkQueue : public QObject
{
    Q_OBJECT

public:
    explicit WorkQueue(int threads, QObject *parent = nullptr);
    ~WorkQueue() override;

    /// `work` runs on a thread of the queue and must not throw; `done` is called with its result on the main thread,
    /// from the event loop. What waits with a higher `priority` begins earlier.
    template <typename Work, typename Done>
    void run(Work work, Done done, int priority = 0)
    {
        using Result = std::invoke_result_t<Work &>;
        start(
            [this, work = std::move(work), done = std::move(done)]() mutable {
                if constexpr (std::is_void_v<Result>) {
                    work();
                    deliver(std::move(done));
                } else {
                    auto result = std::make_shared<Result>(work());
                    deliver([done = std::move(done), result]() mutable { done(std::move(*result)); });
                }
            },
            priority);
    }

    /// Waits for all that was asked for, also for what has not begun. Before the end, where nothing may be left out.
    void finish();

    /// How much of the work has not been delivered yet.
    int pending() const { return m_pending; }

private:
    void start(std::function<void()> task, int priority);
    void deliver(std::function<void()> done);

    QThreadPool m_pool;
    int m_pending = 0;
};

} // namespace hazelmark
