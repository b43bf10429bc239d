#include "tests/platform/trash/traced_process.h"

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {

TracedRun runTraced(const std::function<int()>& work, const std::function<bool(int stop)>& goesOn) {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            ::_exit(1);
        }
        ::raise(SIGSTOP);
        ::_exit(work());
    }
    TracedRun run;
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) {
        return run;
    }
    run.isPossible = true;
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD);
    constexpr int systemCall = SIGTRAP | 0x80;
    bool isBefore = true;
    while (::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
           ::waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
        if (WSTOPSIG(status) != systemCall) {
            continue;
        }
        if (isBefore && !goesOn(run.stops++)) {
            ::kill(child, SIGKILL);
        }
        isBefore = !isBefore;
    }
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

bool atEachStop(const std::function<TracedRun(int at)>& once) {
    int stops = 1;
    for (int at = 0; at < stops && !::testing::Test::HasFailure(); ++at) {
        SCOPED_TRACE("at stop " + std::to_string(at));
        const TracedRun run = once(at);
        if (!run.isPossible) {
            [] { GTEST_SKIP() << "this account may not trace its own processes"; }();
            return false;
        }
        stops = run.stops;
    }
    return true;
}

}  // namespace tallowcrest
