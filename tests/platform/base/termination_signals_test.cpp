#include "platform/base/termination_signals.h"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <future>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

class TerminationSignalsTest : public testing::TestWithParam<int> {};

TEST_P(TerminationSignalsTest, TheFirstOneAsksAndEndsTheProgramAfterItsLastWork) {
    const auto program = [] {
        std::promise<void> asked;
        TerminationSignals signals([&asked] { asked.set_value(); });
        ::raise(GetParam());
        asked.get_future().wait();
        std::fputs("last work", stderr);
        signals.endBySignal();
        std::_Exit(0);
    };
    EXPECT_EXIT(program(), KilledBySignal(GetParam()), "last work");
}

TEST_P(TerminationSignalsTest, ASecondOneEndsTheProgramAtOnce) {
    const auto program = [] {
        const TerminationSignals signals([] { ::kill(::getpid(), SIGINT); });
        ::raise(GetParam());
        for (;;) {
            ::pause();
        }
    };
    EXPECT_EXIT(program(), KilledBySignal(GetParam()), "");
}

TEST_P(TerminationSignalsTest, OneThatWasIgnoredStaysIgnored) {
    const auto program = [] {
        ::signal(GetParam(), SIG_IGN);
        TerminationSignals signals([] { std::_Exit(1); });
        ::raise(GetParam());
        signals.endBySignal();
        ::raise(GetParam());
        std::_Exit(7);
    };
    EXPECT_EXIT(program(), ExitedWithCode(7), "");
}

TEST_P(TerminationSignalsTest, AfterwardsTheyEndTheProgramAgain) {
    const auto program = [] {
        {
            const TerminationSignals signals([] { std::_Exit(1); });
        }
        ::raise(GetParam());
        std::_Exit(0);
    };
    EXPECT_EXIT(program(), KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Each, TerminationSignalsTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

}  // namespace
}  // namespace tallowcrest
