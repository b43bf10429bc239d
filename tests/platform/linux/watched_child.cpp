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

TestChild startBlocked() {
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
        // The signals of its only thread, and those of the process.
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

WatchedChild::WatchedChild() : child_(startBlocked()) {}

bool WatchedChild::isUnharmed() const {
    // It may still be running right after its start.
    return eventually([this] {
        std::ifstream file("/proc/" + std::to_string(pid()) + "/stat");
        std::string text;
        std::getline(file, text);
        return text.find(") S ") != std::string::npos;
    });
}

}  // namespace tallowcrest
