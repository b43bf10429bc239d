#pragma once

#include <cstdint>
#include <memory>

#include "actions/process_control.h"

namespace tallowcrest {

/// Signals processes through pidfds, which refer to one process even after its pid is reused. Start
/// times are those of the `stat` file, in ticks since boot.
///
/// A held process keeps one descriptor open, which children do not inherit. Without a free
/// descriptor, or on a kernel without pidfds, `terminate` fails with the system's message. Where
/// /proc belongs to another pid namespace, nothing is signalled, because its pids mean other
/// processes here.
class PidfdProcessControl final : public ProcessControl {
public:
    std::unique_ptr<HeldProcess> hold(std::int64_t pid, std::uint64_t startTime) override;
};

}  // namespace tallowcrest
