#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "sampling/home_volume.h"

namespace tallowcrest {

/// The plain free blocks that a user other than root may fill. A home on a network that has gone
/// away can hold one caller for as long as that lasts; others meanwhile get the last figures.
class PosixHomeVolume final : public HomeVolume {
public:
    /// Reads the volume that holds the home directory; may block.
    using ReadVolume = std::function<DiskSnapshot()>;

    explicit PosixHomeVolume(std::string homeDirectory);
    explicit PosixHomeVolume(ReadVolume readVolume);

    DiskSnapshot readDiskSnapshot() override;

private:
    const ReadVolume readVolume_;
    std::mutex reading_;
    std::mutex lock_;
    DiskSnapshot latest_;
};

}  // namespace tallowcrest
