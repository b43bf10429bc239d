#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "actions/process_control.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Signals processes with `/bin/kill`, for systems without a handle that refers to one process. The
/// start time is checked right before the launch. A pid that is reused between the check and the
/// signal is not noticed; such systems offer no way to prevent this.
class KillTool final : public ProcessControl {
public:
    /// The start time of the process with this pid, in the unit of `ProcessSample::startTime`; 0
    /// when there is no such process. Main thread.
    using StartTimeOf = std::function<std::uint64_t(std::int64_t pid)>;

    /// The references must outlive the object and every process that it holds.
    KillTool(const CommandSafetyPolicy::AllowedExecutables& allowed, ToolLauncher& launcher,
             StartTimeOf startTimeOf)
        : allowed_(allowed), launcher_(launcher), startTimeOf_(std::move(startTimeOf)) {}

    std::unique_ptr<HeldProcess> hold(std::int64_t pid, std::uint64_t startTime) override;

private:
    const CommandSafetyPolicy::AllowedExecutables& allowed_;
    ToolLauncher& launcher_;
    StartTimeOf startTimeOf_;
};

}  // namespace tallowcrest
