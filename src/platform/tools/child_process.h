#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// One launched tool. It leads a session and process group of its own and starts with default
/// signal handling, nothing blocked, an empty standard input, and no descriptor beyond the standard
/// three. One thread.
class ChildProcess {
public:
    ChildProcess() = default;
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Asks a child that is still running to terminate, and waits for its exit.
    ~ChildProcess();

    /// Launches `path`, with its standard output and standard error on the two descriptors. 0, or
    /// the error number, with no child. A path that is not absolute, and a text that could not be
    /// handed over whole because of a NUL in it, are refused. Called once.
    int spawn(const std::string& path, const std::vector<std::string>& arguments,
              int standardOutput, int standardError);

    /// Polls as readable once the child has exited. -1 where the system cannot tell: then the owner
    /// asks `hasExited` from time to time.
    int exitDescriptor() const { return exitDescriptor_.get(); }

    /// Takes the exit status when there is one. Does not block.
    bool hasExited();

    /// After the exit; absent when a signal ended the child or its status was lost.
    std::optional<int> terminationStatus() const { return terminationStatus_; }

    /// Asks the child, and what it started in its group, to terminate.
    void terminate();

    /// Leaves the child to itself. Its zombie then stays until this process ends.
    void giveUp();

private:
    /// True when the child is gone.
    bool reap(int waitOptions);

    pid_t pid_ = -1;  ///< -1 when there is no child to wait for
    UniqueFD exitDescriptor_;
    std::optional<int> terminationStatus_;
};

}  // namespace tallowcrest
