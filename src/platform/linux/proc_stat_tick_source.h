#pragma once

#include <optional>
#include <string>

#include "platform/linux/kernel_file.h"
#include "sampling/system_cpu_load_reader.h"

namespace tallowcrest {

/// The tick counters of `/proc/stat`. Any thread.
class ProcStatTickSource final : public CPUTickSource {
public:
    explicit ProcStatTickSource(const std::string& procRoot = "/proc");

    std::optional<CPUTickReading> readTicks() override;

private:
    const KernelFile stat_;
};

}  // namespace tallowcrest
