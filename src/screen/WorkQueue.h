#pragma once

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace hazelmark {

/// Runs work off the main thread and brings its results back to it. Work begins in the order in which it came; with
/// one thread it ends in that order too.
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
    /// from the event loop.
    template <typename Work, typename Done>
    void run(Work work, Done done)
    {
        using Result = std::invoke_result_t<Work &>;
        start([this, work = std::move(work), done = std::move(done)]() mutable {
            if constexpr (std::is_void_v<Result>) {
                work();
                deliver(std::move(done));
            } else {
                auto result = std::make_shared<Result>(work());
                deliver([done = std::move(done), result]() mutable { done(std::move(*result)); });
            }
        });
    }

    /// How much of the work has not been delivered yet.
    int pending() const { return m_pending; }

private:
    void start(std::function<void()> task);
    void deliver(std::function<void()> done);

    QThreadPool m_pool;
    int m_pending = 0;
};

} // namespace hazelmark
