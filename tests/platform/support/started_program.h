#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// A program that runs beside a test, which reads its standard output. It is killed by the
/// destructor, and when the test's thread ends for any reason.
class StartedProgram {
public:
    /// Looked up in $PATH. Inherits the environment; its standard error is discarded.
    explicit StartedProgram(const std::vector<std::string>& arguments);
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;
    ~StartedProgram() { end(); }

    pid_t pid() const { return pid_; }

    /// Its next line, without the newline; what is left when it ends or writes nothing for too
    /// long.
    std::string line();
    /// Waits until it has ended. Absent when a signal ended it or it does not end in time.
    std::optional<int> exitStatus();
    bool isRunning();

    void signal(int number) const;
    /// Kills it and waits for it.
    void end();

private:
    pid_t pid_;
    UniqueFD output_;
    std::string received_;
    std::optional<int> status_;  ///< from `waitpid`, once it has ended
};

}  // namespace tallowcrest
