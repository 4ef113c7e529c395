#pragma once

#include <functional>
#include <utility>

namespace hazelmark {

/// While it lives, decoders that this thread waits for are ended as soon as nobody wants their picture any more, and
/// those that read row by row tell how far they are.
class DecodeScope
{
public:
    /// Told the share that is done, 0..1.
    using Progress = std::function<void(double)>;

    /// Both are called now and then, on this thread, and must not throw: there may be a library in between that is C.
    explicit DecodeScope(std::function<bool()> isUnwanted, Progress progress = {})
        : m_outer(s_current)
        , m_isUnwanted(std::move(isUnwanted))
        , m_progress(std::move(progress))
    {
        s_current = this;
    }
    ~DecodeScope() { s_current = m_outer; }
    DecodeScope(const DecodeScope &) = delete;
    DecodeScope &operator=(const DecodeScope &) = delete;

    /// What this thread waits for.
    static bool isUnwanted() { return s_current && s_current->m_isUnwanted(); }
    static void tellProgress(double done)
    {
        if (s_current && s_current->m_progress)
            s_current->m_progress(done);
    }

private:
    inline static thread_local const DecodeScope *s_current = nullptr;
    const DecodeScope *m_outer;
    const std::function<bool()> m_isUnwanted;
    const Progress m_progress;
};

} // namespace hazelmark
