#pragma once

#include <functional>

namespace hazelmark {

/// While it lives, decoders that this thread waits for are ended as soon as nobody wants their picture any more.
class DecodeScope
{
public:
    /// `isUnwanted` is asked now and then, on this thread.
    explicit DecodeScope(std::function<bool()> isUnwanted)
        : m_outer(s_current)
        , m_isUnwanted(std::move(isUnwanted))
    {
        s_current = this;
    }
    ~DecodeScope() { s_current = m_outer; }
    DecodeScope(const DecodeScope &) = delete;
    DecodeScope &operator=(const DecodeScope &) = delete;

    /// What this thread waits for.
    static bool isUnwanted() { return s_current && s_current->m_isUnwanted(); }

private:
    inline static thread_local const DecodeScope *s_current = nullptr;
    const DecodeScope *m_outer;
    const std::function<bool()> m_isUnwanted;
};

} // namespace hazelmark
