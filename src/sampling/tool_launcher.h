#pragma once

#include <chrono>
#include <optional>
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
};

/// What became of a launch.
struct ToolResult {
    bool launched = false;
    std::string launchError;  ///< the platform's words when it was not launched, else empty
    /// What the tool wrote until it exited, raw bytes. A tool that overran its deadline has thus
    /// all that it wrote before, and what it still wrote while it was ending. Bounded: what a
    /// runaway tool writes beyond the implementation's limit is dropped.
    std::string output;
    /// Absent when it was not launched, ended by a signal, or was given up at shutdown.
    std::optional<int> terminationStatus;
    bool deadlinePassed = false;
};

/// Launches tools by absolute path with an argument array; never a shell. Environment,
/// working directory and the calling thread's priority are inherited; standard input is empty. Any
/// thread, several at once; blocks the caller.
///
/// At the deadline the tool is asked to terminate, and the call then waits for its exit without
/// any further deadline: a tool that ignores the request holds the caller. No descriptor and no
/// zombie is left behind. Whether a path may be launched at all is the caller's test, made first,
/// because each caller has its own answer to a refusal.
///
/// A request without a timeout is the waited launch, for tools whose exit status decides what the
/// owner is told: `launched` false with the platform's words, else `terminationStatus`.
class ToolLauncher {
public:
    virtual ~ToolLauncher() = default;

    virtual ToolResult launch(const ToolRequest& request) = 0;
};

/// Launches the tool for its output alone: a failed launch, an output that is not valid UTF-8 and a
/// silent tool are all the empty text, and the exit status is not looked at. Threads as `launch`.
std::string launchForText(ToolLauncher& launcher, const ToolRequest& request);

}  // namespace tallowcrest
