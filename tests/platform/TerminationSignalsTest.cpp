#include "TerminationSignals.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>

namespace hazelmark {

namespace {

volatile std::sig_atomic_t previousCalls = 0;

void previousHandler(int)
{
    previousCalls = previousCalls + 1;
}

} // namespace

using TerminationSignalsTest = ::testing::TestWithParam<int>;

TEST_P(TerminationSignalsTest, TheFirstComesFromTheEventLoopAndTheNextTakesItsOldWay)
{
    previousCalls = 0;
    int received = 0;
    auto *const before = std::signal(GetParam(), previousHandler);
    auto *const hangUpBefore = std::signal(SIGHUP, SIG_IGN);
    {
        TerminationSignals termination;
        QObject::connect(&termination, &TerminationSignals::received, [&] { ++received; });
        std::raise(SIGHUP);
        QCoreApplication::processEvents();
        EXPECT_EQ(received, 0) << "what is ignored stays ignored";

        std::raise(GetParam());
        EXPECT_EQ(received, 0) << "nothing is done within the handler";
        QCoreApplication::processEvents();
        EXPECT_EQ(received, 1);
        EXPECT_EQ(previousCalls, 0);

        std::raise(GetParam());
        EXPECT_EQ(previousCalls, 1);
        QCoreApplication::processEvents();
        EXPECT_EQ(received, 1);
    }
    std::signal(SIGHUP, hangUpBefore);
    EXPECT_EQ(std::signal(GetParam(), before), previousHandler);
}

INSTANTIATE_TEST_SUITE_P(Signals, TerminationSignalsTest, ::testing::Values(SIGTERM, SIGINT, SIGQUIT));

} // namespace hazelmark
