#pragma once

#include <sys/types.h>

#include <csignal>
#include <cstdint>
#include <functional>
#include <optional>

#include "tests/platform/support/test_children.h"

namespace tallowcrest {

/// A set of signals as the kernel writes it: signal 1 is the lowest bit.
using SignalBits = std::uint64_t;

inline constexpr SignalBits noSignal = 0;
inline constexpr SignalBits termOnly = SignalBits{1} << (SIGTERM - 1);

/// The signals that were sent to a process which blocks them. Absent when there is no such process.
std::optional<SignalBits> pendingSignals(pid_t pid);

/// When a process began, as the process table tells it; 0 when it does not.
std::uint64_t startTimeOf(pid_t pid);

/// Blocks all signals of the calling thread. What it starts meanwhile is born with them blocked.
class BlockedSignals {
public:
    BlockedSignals();
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals();

private:
    sigset_t before_;
};

/// A child on which every signal leaves its trace: KILL and STOP cannot be blocked and show by
/// their effect, and all others stay pending for as long as it lives.
class WatchedChild {
public:
    WatchedChild();

    pid_t pid() const { return child_.pid(); }
    std::optional<SignalBits> pending() const { return pendingSignals(pid()); }
    /// Whether it is asleep as it was born to be: neither stopped nor a zombie.
    bool isUnharmed() const;

    void end() { child_.end(); }
    void becomeZombie() { child_.becomeZombie(); }

private:
    TestChild child_;
};

/// The exit status of a child that runs `work` for it; absent when a signal ended it.
std::optional<int> statusOfChild(const std::function<int()>& work);

}  // namespace tallowcrest
