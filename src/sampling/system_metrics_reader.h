#pragma once

#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// The readings of one sample. Every operation blocks, so none may be called on the main thread;
/// calls may overlap on several threads. None of them fails: what cannot be read is empty or 0.
class SystemMetricsReader {
public:
    virtual ~SystemMetricsReader() = default;

    /// Every process, in the order of the process table. Empty when there is no table to be had;
    /// a row that cannot be read is left out and the rest survives.
    virtual std::vector<ProcessSample> readProcesses() = 0;

    /// All zeros when nothing can be read.
    virtual MemorySnapshot readMemory() = 0;

    /// The kernel's or tool's own words, trimmed; "Memory pressure unavailable" when it has none.
    virtual std::string readPressureText() = 0;

    /// The volume of the home directory; a figure that cannot be read is 0.
    virtual DiskSnapshot readDiskSnapshot() = 0;
};

}  // namespace tallowcrest
