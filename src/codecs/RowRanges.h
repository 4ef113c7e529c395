#pragma once

#include <QtGlobal>

#include <algorithm>
#include <thread>
#include <vector>

namespace hazelmark {

/// Calls `work(first, end)` for ranges that together are the rows 0..rowCount - 1, on as many threads as there are
/// cores, and returns when all are done. `work` throws nothing.
template <typename Work>
void forRowRanges(int rowCount, const Work &work)
{
    constexpr int kFewestRows = 16; // below, a thread costs more than it saves
    const int cores = int(std::max(1U, std::thread::hardware_concurrency()));
    const int ranges = std::clamp(rowCount / kFewestRows, 1, cores);
    const auto boundary = [rowCount, ranges](int range) { return int(qint64(rowCount) * range / ranges); };
    std::vector<std::jthread> threads;
    for (int range = 1; range < ranges; ++range)
        threads.emplace_back([&work, &boundary, range] { work(boundary(range), boundary(range + 1)); });
    work(0, boundary(1));
}

} // namespace hazelmark
