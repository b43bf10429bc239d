#pragma once

#include <string>
#include <utility>

#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Free space includes what the system would purge for important use. Any thread.
class MacHomeVolume final : public HomeVolume {
public:
    explicit MacHomeVolume(std::string homeDirectory) : homeDirectory_(std::move(homeDirectory)) {}

    DiskSnapshot readDiskSnapshot() override;

private:
    const std::string homeDirectory_;
};

}  // namespace tallowcrest
