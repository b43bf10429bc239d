#pragma once

#include <functional>

namespace tallowcrest {

struct TracedRun {
    bool isPossible = false;  ///< false where this account may not trace
    int stops = 0;            ///< how often the process was stopped
    int status = -1;          ///< exit status; -1 when it was killed
};

/// Runs `work`, whose result is the exit status, in a process that is stopped before each of its
/// system calls, which is also after the one before. At each stop `goesOn` is asked with its
/// number, from 0; when it answers false the process is killed there.
TracedRun runTraced(const std::function<int()>& work, const std::function<bool(int stop)>& goesOn);

/// Calls `once`, which runs a process and interferes with it at the stop `at`, for each stop that
/// the latest of these processes had, until the test has failed. Where a run was not possible it
/// skips the test and returns false.
bool atEachStop(const std::function<TracedRun(int at)>& once);

}  // namespace tallowcrest
