#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

/// A pid namespace for a test.
namespace tallowcrest::pid_namespace {

enum class Procfs {
    own,    ///< `/proc` shows the processes of the namespace
    outer,  ///< `/proc` shows the processes outside
};

struct Run {
    bool isPossible = false;
    std::string reason;  ///< why it is not possible, else empty
    /// The result of the work; -1 when a signal ended it.
    int status = -1;
};

/// Runs `work` as process 1 of a new namespace.
Run run(Procfs procfs, const std::function<int()>& work);

/// Starts a process with this pid, which must be free; it inherits the signal mask. It exits with
/// the result of `work`, or without `work` sleeps until it is killed. Returns the pid, or -1 with
/// `errno` set. For use inside `run`.
pid_t startAs(pid_t pid, const std::function<int()>& work = {});

/// Kills a child and waits for it, which frees its pid.
void killAndWait(pid_t child);

}  // namespace tallowcrest::pid_namespace
