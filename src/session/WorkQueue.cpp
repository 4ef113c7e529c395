#include "WorkQueue.h"

namespace hazelmark {

WorkQueue::WorkQueue(int threads, QObject *parent)
    : QObject(parent)
{
    m_pool.setMaxThreadCount(threads);
}

WorkQueue::~WorkQueue()
{
    m_pool.clear();
    m_pool.waitForDone(); // results that were posted meanwhile end with this object
}

void WorkQueue::finish()
{
    m_pool.waitForDone();
}

void WorkQueue::start(std::function<void()> task, int priority)
{
    ++m_pending;
    m_pool.start(std::move(task), priority);
}

void WorkQueue::deliver(std::function<void()> done)
{
    QMetaObject::invokeMethod(
        this,
        [this, done = std::move(done)] {
            --m_pending;
            done();
        },
        Qt::QueuedConnection);
}

} // namespace hazelmark
