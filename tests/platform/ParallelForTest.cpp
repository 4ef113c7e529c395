#include "ParallelFor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace hazelmark {

TEST(ParallelFor, EveryIndexOnceAlsoNestedAndFromManyThreads)
{
    std::atomic<int> sum = 0;
    const auto run = [&] { parallelFor(50, 8, [&](int i) { parallelFor(3, 8, [&](int j) { sum += i * 3 + j; }); }); };
    {
        const std::jthread other(run);
        run();
    }
    EXPECT_EQ(sum, 2 * 150 * 149 / 2);
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
