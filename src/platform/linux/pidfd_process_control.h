#pragma once

#include <cstdint>
#include <memory>

#include "actions/process_control.h"

namespace tallowcrest {

/// Signals processes through descriptors that the kernel ties to one process each. A start time is
/// that of the `stat` file, in ticks since the boot.
///
/// A held process keeps one descriptor open, which no child inherits. Without one to spare, or on a
/// kernel that has no such descriptors, its `terminate` fails with the system's words. Where the
/// process file system counts processes otherwise than this process does, nothing is signalled: a
/// number that was read there says nothing here.
class PidfdProcessControl final : public ProcessControl {
public:
    std::unique_ptr<HeldProcess> hold(std::int64_t pid, std::uint64_t startTime) override;
};

}  // namespace tallowcrest
