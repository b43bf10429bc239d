#pragma once

#include "core/local_records.h"

namespace tallowcrest {

/// The volume that holds the home directory.
class HomeVolume {
public:
    virtual ~HomeVolume() = default;

    /// Capacity, and the space available to an unprivileged user. A figure that cannot be read is
    /// 0. Blocks; any thread but the main one.
    virtual DiskSnapshot readDiskSnapshot() = 0;
};

}  // namespace tallowcrest
