#pragma once

#include "core/local_records.h"

namespace tallowcrest {

/// Physical memory and the classes that its pages fall into, in bytes. No figure is negative.
struct MemoryClasses {
    double physicalBytes = 0.0;
    double pageSize = 4096.0;  ///< above 0
    double freeBytes = 0.0;
    double speculativeBytes = 0.0;  ///< holds something, yet is given up at once when needed
    double wiredBytes = 0.0;
    double compressedBytes = 0.0;
    double activeBytes = 0.0;

    bool operator==(const MemoryClasses&) const = default;
};

/// `pressure` is the share of physical pages that are active, wired or compressed, capped at 100.
/// It is no pressure level of a kernel: pages that could be given up count as not pressing. With
/// physical memory unknown it is 100 as soon as any page is pressing. Any thread.
MemorySnapshot memorySnapshot(const MemoryClasses& classes);

}  // namespace tallowcrest
