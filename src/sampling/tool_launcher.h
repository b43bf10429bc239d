#pragma once

#include <chrono>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace tallowcrest {

/// One launch of an external tool.
struct ToolRequest {
    std::string path;                         ///< absolute
    std::vector<std::string> arguments = {};  ///< without the tool's own name
    /// Counted from the launch. Absent: wait for the exit however long it takes.
    std::optional<std::chrono::milliseconds> timeout = {};
    /// Whether standard error joins standard output in the captured text; else it is discarded.
    bool mergeStandardError = false;
    /// Once it is requested, the tool is not launched, or asked to terminate; one that has not
    /// ended shortly after is abandoned, and runs on. Never requested by default.
    std::stop_token stop = {};
    /// Whether a tool that has not ended shortly after its deadline is killed, and then abandoned.
    bool isKilledAfterDeadline = false;
};

/// The result of a launch. Not an `Outcome`: the callers need the output or the exit status, and
/// each judges by its own rules whether the tool did its work.
struct ToolResult {
    bool launched = false;
    std::string launchError;  ///< the system's message when it was not launched, else empty
    /// The raw bytes that the tool wrote until it exited, also after a passed deadline. Output
    /// beyond the implementation's limit is dropped.
    std::string output;
    /// Absent when it was not launched, was ended by a signal, or was abandoned at a stop.
    std::optional<int> terminationStatus;
    bool deadlinePassed = false;
};

/// Launches tools by absolute path with an argument array, never through a shell. Environment,
/// working directory and the calling thread's priority are inherited; standard input is empty. Any
/// thread, several at once; blocks the caller.
///
/// At the deadline the tool is asked to terminate, and the call then waits for its exit without a
/// further deadline: a tool that ignores the request blocks the caller, unless it may be killed. No
/// descriptor and no zombie is left behind. The caller checks beforehand whether the path is
/// allowed, because each caller handles a refusal differently.
///
/// A request without a timeout is for tools whose exit status decides what the owner is told:
/// either `launched` is false with `launchError`, or `terminationStatus` counts.
class ToolLauncher {
public:
    virtual ~ToolLauncher() = default;

    virtual ToolResult launch(const ToolRequest& request) = 0;
};

/// Launches the tool for its output alone. Empty when the launch fails, when the output is not
/// valid UTF-8, and when there is none; the exit status is ignored. Threads as `launch`.
std::string launchForText(ToolLauncher& launcher, const ToolRequest& request);

}  // namespace tallowcrest
