#include "tests/platform/support/test_children.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <stdexcept>

namespace tallowcrest {

TestChild::TestChild(const std::function<void()>& work) : pid_(::fork()) {
    if (pid_ == 0) {
        work();
        ::_exit(0);
    }
    if (pid_ < 0) {
        throw std::runtime_error("no child");
    }
}

void TestChild::end() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

void TestChild::becomeZombie() {
    ::kill(pid_, SIGKILL);
    siginfo_t info{};
    ::waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOWAIT);
}

void waitForever() {
    for (;;) {
        ::pause();
    }
}

void spin() {
    for (volatile unsigned count = 0;;) {
        count = count + 1;
    }
}

std::optional<ProcessSample> rowOf(const std::vector<ProcessSample>& rows, std::int64_t pid) {
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [pid](const ProcessSample& row) { return row.pid == pid; });
    return found == rows.end() ? std::nullopt : std::optional(*found);
}

}  // namespace tallowcrest
