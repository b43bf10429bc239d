#pragma once

#include <optional>
#include <string>

#include "platform/linux/kernel_file.h"
#include "sampling/system_cpu_load_reader.h"

namespace tallowcrest {

/// The tick counters of the kernel's `stat` file.
class ProcStatTickSource final : public CPUTickSource {
public:
    explicit ProcStatTickSource(const std::string& procRoot = "/proc")
        : stat_(procRoot + "/stat") {}

    std::optional<CPUTicks> readTicks() override;

private:
    const KernelFile stat_;
};

}  // namespace tallowcrest
