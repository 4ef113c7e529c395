#pragma once

#include <csetjmp>

namespace hazelmark {

/// Runs `step`, which calls into a C library whose error handler leaves by longjmp(jump); false when it did.
///
/// The jump skips destructors, so `step` and what it calls own nothing: every object with a destructor lives in the
/// caller, and `step` refers to it. (setjmp has this small frame to itself because locals that change after it are
/// indeterminate after the jump.)
template <typename Step>
[[gnu::noinline]] bool runGuarded(std::jmp_buf &jump, const Step &step)
{
    if (setjmp(jump) != 0)
        return false;
    step();
    return true;
}

} // namespace hazelmark
