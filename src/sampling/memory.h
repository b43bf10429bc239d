#pragma once

#include <string>
#include <string_view>

#include "core/local_records.h"

namespace tallowcrest {

/// Physical memory and the classes that its pages fall into, in bytes. No figure is negative.
struct MemoryClasses {
    double physicalBytes = 0.0;
    double pageSize = 4096.0;  ///< above 0
    double freeBytes = 0.0;
    double speculativeBytes = 0.0;  ///< in use, but released at once when needed
    double wiredBytes = 0.0;
    double compressedBytes = 0.0;
    double activeBytes = 0.0;

    bool operator==(const MemoryClasses&) const = default;
};

/// `pressure` is the share of physical pages that are active, wired or compressed, at most 100. It
/// is not a kernel's pressure level: pages that can be released do not count. When the physical
/// memory is unknown it is 100 as soon as any page counts. Any thread.
MemorySnapshot memorySnapshot(const MemoryClasses& classes);

/// The text that the kernel or a tool gives on memory pressure, trimmed. "Memory pressure
/// unavailable" when there is none. Any thread.
std::string pressureText(std::string_view sourceText);

}  // namespace tallowcrest
