#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "sampling/system_metrics_reader.h"

namespace tallowcrest {

/// Free space is the blocks available to users other than root. While a home directory on an
/// unreachable network blocks one caller, the others get the latest figures.
class PosixHomeVolume final : public HomeVolume {
public:
    /// Reads the volume of the home directory; may block.
    using ReadVolume = std::function<DiskSnapshot()>;

    explicit PosixHomeVolume(std::string homeDirectory);
    explicit PosixHomeVolume(ReadVolume readVolume);

    DiskSnapshot readDiskSnapshot() override;

private:
    const ReadVolume readVolume_;
    std::mutex readLock_;    ///< held by the one caller that reads
    std::mutex latestLock_;  ///< guards `latest_`
    DiskSnapshot latest_;
};

}  // namespace tallowcrest
