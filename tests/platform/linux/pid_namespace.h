#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

/// Process numbers that a test has to itself.
namespace tallowcrest::pid_namespace {

enum class Procfs {
    own,    ///< `/proc` shows the processes of the namespace
    outer,  ///< `/proc` stays that of the outside
};

struct Run {
    bool isPossible = false;
    std::string reason;  ///< why it is not possible, else empty
    /// What the work came to; -1 when a signal ended it.
    int status = -1;
};

/// Runs `work` as the first process of a new namespace, in a child of the calling process.
Run run(Procfs procfs, const std::function<int()>& work);

/// Starts a process under just this number, which must be free; born with the signals blocked that
/// the caller blocks. It exits with what `work` returns; without one it does nothing for good. The
/// number, or -1 with `errno`. For use inside `run`.
pid_t startAs(pid_t number, const std::function<int()>& work = {});

/// Kills a child and waits for it: from then on its number is free.
void bury(pid_t child);

}  // namespace tallowcrest::pid_namespace
