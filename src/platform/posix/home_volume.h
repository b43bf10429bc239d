#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "sampling/home_volume.h"

namespace tallowcrest {

/// The plain free blocks that a user other than root may fill. A home on a network that has gone
/// away can hold one caller for as long as that lasts; others meanwhile get the last figures.
class PosixHomeVolume final : public HomeVolume {
public:
    explicit PosixHomeVolume(std::string homeDirectory)
        : homeDirectory_(std::move(homeDirectory)) {}

    DiskSnapshot readDiskSnapshot() override;

private:
    const std::string homeDirectory_;
    std::mutex reading_;
    std::mutex lock_;
    DiskSnapshot latest_;
};

}  // namespace tallowcrest
