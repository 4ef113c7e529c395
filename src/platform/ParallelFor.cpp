#include "ParallelFor.h"

#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>

namespace hazelmark {

namespace {

/// One call of parallelFor(). Workers that the pool starts after the call has returned still find it alive, and
/// nothing left to do in it.
class Loop
{
public:
    Loop(int count, const std::function<void(int)> &body)
        : m_count(count)
        , m_body(&body)
    {
    }

    void work()
    {
        {
            std::lock_guard lock(m_mutex);
            if (m_next >= m_count)
                return;
            ++m_working;
        }
        while (const std::optional<int> index = take())
            run(*index);
        std::lock_guard lock(m_mutex);
        --m_working;
        m_idle.notify_all();
    }

    void waitForTheOthers()
    {
        std::unique_lock lock(m_mutex);
        m_idle.wait(lock, [this] { return m_working == 0; });
        if (m_error)
            std::rethrow_exception(m_error);
    }

private:
    std::optional<int> take()
    {
        std::lock_guard lock(m_mutex);
        if (m_next >= m_count)
            return std::nullopt;
        return m_next++;
    }

    void run(int index)
    {
        try {
            (*m_body)(index);
        } catch (...) {
            std::lock_guard lock(m_mutex);
            if (!m_error)
                m_error = std::current_exception();
            m_next = m_count;
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_idle;
    const int m_count;
    const std::function<void(int)> *const m_body; ///< outlives every call of it: work() ends before the caller leaves
    int m_next = 0;
    int m_working = 0;
    std::exception_ptr m_error;
};

QThreadPool &pool()
{
    static QThreadPool threads;
    return threads;
}

} // namespace

int defaultThreadCount()
{
    return std::max(1, QThread::idealThreadCount());
}

void parallelFor(int count, int threads, const std::function<void(int)> &body)
{
    const int others = std::min(threads, count) - 1;
    if (others <= 0) {
        for (int i = 0; i < count; ++i)
            body(i);
        return;
    }
    auto loop = std::make_shared<Loop>(count, body);
    for (int i = 0; i < others; ++i)
        pool().start([loop] { loop->work(); });
    loop->work();
    loop->waitForTheOthers();
}

} // namespace hazelmark
