#pragma once

#include <atomic>
#include <cstddef>

#include "platform/tools/spawn_support.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Launches tools as children of this process. It is destroyed only after every call has returned.
///
/// Both output streams are drained while the tool runs, so that a tool never stalls on a full pipe.
/// A tool that has exited is done, even if something that it started keeps its output open: what
/// the pipe holds at that moment is taken, and nothing more is waited for.
class PosixToolLauncher final : public ToolLauncher {
public:
    /// What one launch captures at most; the tool goes on undisturbed and the excess is dropped.
    static constexpr std::size_t maximumOutputBytes = 64U << 20U;

    PosixToolLauncher();

    ToolResult launch(const ToolRequest& request) override;

    /// For the end of the process: running tools are asked to terminate at once, and one that has
    /// not ended shortly after, or by its deadline if that comes first, is given up: its launch
    /// returns without a termination status and the tool is left to itself. Nothing is launched any
    /// more. Returns at once; any thread; for good.
    void requestStop();

private:
    std::atomic<bool> stopRequested_ = false;
    /// Readable from the stop on, which wakes every waiting launch. Without ends when there was no
    /// descriptor left for it; launches then look at the flag from time to time.
    spawn_support::Pipe stopPipe_;
};

}  // namespace tallowcrest
