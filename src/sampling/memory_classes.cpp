#include "sampling/memory_classes.h"

#include <algorithm>
#include <cmath>

#include "sampling/binary_units.h"

namespace tallowcrest {

MemorySnapshot memorySnapshot(const MemoryClasses& classes) {
    MemorySnapshot result;
    result.totalGB = classes.physicalBytes * gigabytesPerByte;
    result.freeGB = (classes.freeBytes + classes.speculativeBytes) * gigabytesPerByte;
    result.usedGB = std::max(result.totalGB - result.freeGB, 0.0);
    result.wiredGB = classes.wiredBytes * gigabytesPerByte;
    result.compressedGB = classes.compressedBytes * gigabytesPerByte;

    const double totalPages = std::max(std::trunc(classes.physicalBytes / classes.pageSize), 1.0);
    const double pressingPages =
        (classes.activeBytes + classes.wiredBytes + classes.compressedBytes) / classes.pageSize;
    result.pressure = std::min(pressingPages / totalPages * 100.0, 100.0);
    return result;
}

}  // namespace tallowcrest
