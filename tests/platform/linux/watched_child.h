#pragma once

#include <sys/types.h>

#include <csignal>
#include <cstdint>
#include <functional>
#include <optional>

#include "tests/platform/support/test_children.h"

namespace tallowcrest {

/// A set of signals as the kernel prints it: signal 1 is the lowest bit.
using SignalBits = std::uint64_t;

inline constexpr SignalBits noSignal = 0;
inline constexpr SignalBits termOnly = SignalBits{1} << (SIGTERM - 1);

/// The pending signals of a process that blocks all signals. Absent when there is no such process.
std::optional<SignalBits> pendingSignals(pid_t pid);

/// The start time of a process from the process table; 0 when it is not listed.
std::uint64_t startTimeOf(pid_t pid);

/// Blocks all signals on the calling thread. Children that it starts meanwhile inherit the mask.
class BlockedSignals {
public:
    BlockedSignals();
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals();

private:
    sigset_t before_;
};

/// A child that records every signal sent to it: all that can be blocked stay pending, and SIGKILL
/// and SIGSTOP show by their effect.
class WatchedChild {
public:
    WatchedChild();

    pid_t pid() const { return child_.pid(); }
    std::optional<SignalBits> pending() const { return pendingSignals(pid()); }
    /// Whether it is asleep, as expected: neither stopped nor a zombie.
    bool isUnharmed() const;

    void end() { child_.end(); }
    void becomeZombie() { child_.becomeZombie(); }

private:
    TestChild child_;
};

}  // namespace tallowcrest
