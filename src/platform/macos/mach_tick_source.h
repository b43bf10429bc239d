#pragma once

#include <optional>

#include "sampling/system_cpu_load_reader.h"

namespace tallowcrest {

/// The tick counters of the Mach host. They are 32 bits wide and wrap around. Any thread.
class MachTickSource final : public CPUTickSource {
public:
    std::optional<CPUTickReading> readTicks() override;
};

}  // namespace tallowcrest
