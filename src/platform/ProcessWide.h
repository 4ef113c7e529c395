#pragma once

namespace hazelmark {

/// The one instance of T that the process uses, made on first use, and a way to put another in its place. Classes of
/// this module hand it out under a name of their own (`Workspace::sharedWorkspace()`); only tests replace it.
/// Main thread only.
template <typename T>
class ProcessWide
{
public:
    static T &instance()
    {
        if (s_replacement)
            return *s_replacement;
        static T own;
        return own;
    }

    /// While it lives, `instance()` is `replacement`. Replacements nest.
    class Replacement
    {
    public:
        explicit Replacement(T &replacement)
            : m_before(s_replacement)
        {
            s_replacement = &replacement;
        }
        ~Replacement() { s_replacement = m_before; }
        Replacement(const Replacement &) = delete;
        Replacement &operator=(const Replacement &) = delete;

    private:
        T *m_before;
    };

private:
    static inline T *s_replacement = nullptr;
};

} // namespace hazelmark
