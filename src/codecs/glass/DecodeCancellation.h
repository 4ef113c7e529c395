#pragma once

#include <atomic>
#include <memory>

namespace hazelmark {

/// Says to decoders at work on other threads that their picture is not wanted any more. Copies are one and the same.
class DecodeCancellation
{
public:
    DecodeCancellation()
        : m_isCancelled(std::make_shared<std::atomic_bool>(false))
    {
    }
    void cancel() { *m_isCancelled = true; }

    /// While it lives, decoders that this thread waits for end when the cancellation says so.
    class Scope
    {
    public:
        explicit Scope(const DecodeCancellation &cancellation)
            : m_outer(s_current)
            , m_flag(cancellation.m_isCancelled)
        {
            s_current = m_flag.get();
        }
        ~Scope() { s_current = m_outer; }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        const std::atomic_bool *m_outer;
        std::shared_ptr<const std::atomic_bool> m_flag;
    };

    /// Of what this thread does.
    static bool isCancelled() { return s_current && *s_current; }

private:
    inline static thread_local const std::atomic_bool *s_current = nullptr;
    std::shared_ptr<std::atomic_bool> m_isCancelled;
};

} // namespace hazelmark
