#pragma once

#include <semaphore>

namespace hazelmark {

/// Holds threads up until it is opened.
class Gate
{
public:
    void open(int times = 1000) { m_semaphore.release(times); }
    void pass() { m_semaphore.acquire(); }

private:
    std::counting_semaphore<> m_semaphore{0};
};

} // namespace hazelmark
