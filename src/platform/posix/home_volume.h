#pragma once

#include <string>
#include <utility>

#include "sampling/home_volume.h"

namespace tallowcrest {

/// The plain free blocks that a user other than root may fill.
class PosixHomeVolume final : public HomeVolume {
public:
    explicit PosixHomeVolume(std::string homeDirectory)
        : homeDirectory_(std::move(homeDirectory)) {}

    DiskSnapshot readDiskSnapshot() override;

private:
    const std::string homeDirectory_;
};

}  // namespace tallowcrest
