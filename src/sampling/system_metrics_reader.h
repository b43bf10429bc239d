#pragma once

#include <string>
#include <vector>

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

/// The readings of one sample. Every operation blocks: any thread but the main one, several at
/// once. No operation fails: what cannot be read is empty or 0.
class SystemMetricsReader {
public:
    virtual ~SystemMetricsReader() = default;

    /// Every process, in the order of the process table. A process that cannot be read is left out;
    /// empty when the table cannot be read.
    virtual std::vector<ProcessSample> readProcesses() = 0;

    /// All zeros when nothing can be read.
    virtual MemorySnapshot readMemory() = 0;

    /// The text of the kernel or the tool, trimmed; "Memory pressure unavailable" when there is
    /// none.
    virtual std::string readPressureText() = 0;

    /// The volume of the home directory; a figure that cannot be read is 0.
    virtual DiskSnapshot readDiskSnapshot() = 0;
};

}  // namespace tallowcrest
