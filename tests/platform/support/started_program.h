#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// A program that runs beside a test, which hears its standard output. It ends with this object,
/// and with the test's thread though that crashes.
class StartedProgram {
public:
    /// Looked up in the search path; inherits the environment. What it complains of is dropped.
    explicit StartedProgram(const std::vector<std::string>& arguments);
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;
    ~StartedProgram() { end(); }

    pid_t pid() const { return pid_; }

    /// Its next line, without the break. What there is when it ends or is silent for too long.
    std::string line();
    /// Waits for its end. Absent when a signal ended it or it does not end.
    std::optional<int> exitStatus();
    bool isRunning();

    void signal(int number) const;
    /// Kills it and waits for it.
    void end();

private:
    pid_t pid_;
    UniqueFD output_;
    std::string heard_;
    std::optional<int> status_;  ///< as `waitpid` tells it, once it has ended
};

}  // namespace tallowcrest
