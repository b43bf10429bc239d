#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// One launched tool. It leads its own session and process group, and starts with default signal
/// handlers, no blocked signals, an empty standard input, and only the three standard descriptors.
/// One thread.
class ChildProcess {
public:
    ChildProcess() = default;
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Asks a child that is still running to terminate, and waits for its exit.
    ~ChildProcess();

    /// Launches `path` with its standard output and standard error on the given descriptors.
    /// Returns 0, or the error number when no child was started. Refuses a relative path, and any
    /// string that contains a NUL and so could not be passed completely. Called once.
    int spawn(const std::string& path, const std::vector<std::string>& arguments,
              int standardOutput, int standardError);

    /// Polls as readable once the child has exited. -1 where the system has no such descriptor;
    /// call `hasExited` periodically then.
    int exitDescriptor() const { return exitDescriptor_.get(); }

    /// Whether the child has exited; collects its exit status if so. Does not block.
    bool hasExited();

    /// Valid after the exit. Absent when a signal ended the child or its status was lost.
    std::optional<int> terminationStatus() const { return terminationStatus_; }

    /// Asks the child and its process group to terminate.
    void terminate();
    /// Ends them, whatever they do with that request.
    void kill();

    /// Stops waiting for the child. Its zombie remains until this process ends.
    void abandon();

private:
    void signal(int number);
    /// Returns true when no child is left to wait for.
    bool reap(int waitOptions);

    pid_t pid_ = -1;  ///< -1 when there is no child to wait for
    UniqueFD exitDescriptor_;
    std::optional<int> terminationStatus_;
};

}  // namespace tallowcrest
