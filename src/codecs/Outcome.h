#pragma once

#include "Failure.h"

#include <utility>
#include <variant>

namespace hazelmark {

/// Either a value or the reason why there is none.
template <typename T>
class [[nodiscard]] Outcome
{
public:
    Outcome(T value)
        : m_state(std::in_place_index<0>, std::move(value))
    {
    }
    Outcome(Failure failure)
        : m_state(std::in_place_index<1>, std::move(failure))
    {
    }

    explicit operator bool() const { return m_state.index() == 0; }
    T &operator*() { return std::get<0>(m_state); }
    const T &operator*() const { return std::get<0>(m_state); }
    T *operator->() { return &std::get<0>(m_state); }
    const T *operator->() const { return &std::get<0>(m_state); }
    /// Only when there is no value.
    const Failure &failure() const { return std::get<1>(m_state); }

private:
    std::variant<T, Failure> m_state;
};

/// What an operation without a result hands back when it went well.
using Done = std::monostate;

} // namespace hazelmark
