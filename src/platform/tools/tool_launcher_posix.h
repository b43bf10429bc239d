#pragma once

#include <atomic>
#include <cstddef>

#include "platform/tools/spawn_support.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Launches tools as children of this process. Destroyed only after every call has returned.
///
/// Both output streams are drained while the tool runs, so it never stalls on a full pipe. The
/// launch ends when the tool exits, even if a child of the tool keeps its output open: what the
/// pipe holds at that moment is read, and nothing more is waited for.
class PosixToolLauncher final : public ToolLauncher {
public:
    /// The most output that one launch captures. The tool runs on, and the rest is discarded.
    static constexpr std::size_t maximumOutputBytes = 64U << 20U;

    PosixToolLauncher();

    ToolResult launch(const ToolRequest& request) override;

    /// For the shutdown of the process. Running tools are asked to terminate. One that has not
    /// ended shortly after, or by its deadline if that comes first, is abandoned: its launch
    /// returns without a termination status, and the tool runs on. Later launches fail. Returns
    /// immediately; any thread; cannot be undone.
    void requestStop();

private:
    std::atomic<bool> stopRequested_ = false;
    /// Readable after `requestStop`, which wakes every waiting launch. Without descriptors when
    /// none were left; launches then poll the flag.
    spawn_support::Pipe stopPipe_;
};

}  // namespace tallowcrest
