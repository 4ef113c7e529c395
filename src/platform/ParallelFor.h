#pragma once

#include <functional>

namespace hazelmark {

/// How many threads work on a picture when nothing else is said: one a processor that this process may run on.
int defaultThreadCount();

/// Calls body(0) .. body(count - 1), each once, on the calling thread and up to `threads - 1` others; returns when
/// all are done. Bodies take from a common counter, so uneven ones balance out. With one thread or one body nothing
/// is started.
///
/// The calling thread works like the others and never waits for one that has not begun: calls from many threads at
/// once, and from within a body, cannot block each other. The first exception that a body throws is thrown again
/// here after the bodies that had begun are over; the rest are skipped.
void parallelFor(int count, int threads, const std::function<void(int)> &body);

} // namespace hazelmark
