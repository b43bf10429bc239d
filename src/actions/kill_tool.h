#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "actions/process_control.h"
#include "sampling/command_safety_policy.h"
#include "sampling/tool_launcher.h"

namespace tallowcrest {

/// Signals processes with `/bin/kill`, where the system has no handle that stands for one process.
/// The start time is looked at right before the launch, which leaves a gap of a launch's length:
/// nothing closes it there.
class KillTool final : public ProcessControl {
public:
    /// When the process with that number began, in the unit of `ProcessSample::startTime`; 0 when
    /// there is no such process.
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
