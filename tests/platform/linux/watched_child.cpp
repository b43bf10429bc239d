#include "tests/platform/linux/watched_child.h"

#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <ios>
#include <string>

#include "platform/linux/procfs_process_table.h"
#include "tests/support/eventually.h"

namespace tallowcrest {
namespace {

TestChild bornDeaf() {
    const BlockedSignals blocked;
    return TestChild([] { waitForever(); });
}

}  // namespace

std::optional<SignalBits> pendingSignals(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    SignalBits pending = 0;
    int fieldsFound = 0;
    std::string label;
    std::string rest;
    while (status >> label) {
        // Those of its only thread, and those of the process.
        if (label == "SigPnd:" || label == "ShdPnd:") {
            SignalBits bits = 0;
            status >> std::hex >> bits;
            pending |= bits;
            ++fieldsFound;
        }
        std::getline(status, rest);
    }
    return fieldsFound == 2 ? std::optional(pending) : std::nullopt;
}

std::uint64_t startTimeOf(pid_t pid) {
    ProcfsProcessTable table(ProcfsMachine::current());
    const auto row = rowOf(table.readProcesses(), pid);
    return row ? row->startTime : 0;
}

BlockedSignals::BlockedSignals() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
}

BlockedSignals::~BlockedSignals() {
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

WatchedChild::WatchedChild() : child_(bornDeaf()) {}

bool WatchedChild::isUnharmed() const {
    // On its way to sleep it may still be running.
    return eventually([this] {
        std::ifstream file("/proc/" + std::to_string(pid()) + "/stat");
        std::string text;
        std::getline(file, text);
        return text.find(") S ") != std::string::npos;
    });
}

std::optional<int> statusOfChild(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(work());
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return std::nullopt;
    }
    return WEXITSTATUS(status);
}

}  // namespace tallowcrest
