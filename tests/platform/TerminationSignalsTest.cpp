#include "TerminationSignals.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <csignal>
#include <memory>

namespace hazelmark {

namespace {

volatile std::sig_atomic_t previousCalls = 0;

void previousHandler(int)
{
    previousCalls = previousCalls + 1;
}

} // namespace

TEST(TerminationSignals, TheFirstComesFromTheEventLoopAndTheNextTakesItsOldWay)
{
    for (const int signal : {SIGTERM, SIGINT, SIGQUIT}) {
        previousCalls = 0;
        int received = 0;
        auto *const before = std::signal(signal, previousHandler);
        auto *const hangUpBefore = std::signal(SIGHUP, SIG_IGN);
        auto termination = std::make_unique<TerminationSignals>();
        QObject::connect(termination.get(), &TerminationSignals::received, [&] { ++received; });
        const auto raise = [&](int one) {
            std::raise(one);
            EXPECT_EQ(received, previousCalls) << "nothing is done within the handler";
            QCoreApplication::processEvents();
        };
        raise(SIGHUP);
        EXPECT_EQ(received, 0) << "what is ignored stays ignored";
        raise(signal);
        EXPECT_EQ(received, 1);
        raise(signal);
        EXPECT_EQ(received + previousCalls, 2);
        termination.reset();
        std::signal(SIGHUP, hangUpBefore);
        EXPECT_EQ(std::signal(signal, before), previousHandler);
    }
}

} // namespace hazelmark
