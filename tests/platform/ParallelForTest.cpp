#include "ParallelFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace hazelmark {

TEST(ParallelFor, EveryIndexOnceAlsoNestedAndFromManyThreads)
{
    std::atomic<int> sum = 0;
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back(
            [&] { parallelFor(50, 8, [&](int i) { parallelFor(3, 8, [&](int j) { sum += i * 3 + j; }); }); });
    for (std::thread &caller : callers)
        caller.join();
    EXPECT_EQ(sum, 4 * 150 * 149 / 2);
}

TEST(ParallelFor, TheFirstExceptionReachesTheCaller)
{
    EXPECT_THROW(parallelFor(1000, 4,
                             [](int i) {
                                 if (i == 10)
                                     throw std::runtime_error("ten");
                             }),
                 std::runtime_error);
}

} // namespace hazelmark
