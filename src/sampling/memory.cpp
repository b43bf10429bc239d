#include "sampling/memory.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
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
    const double pagesUnderPressure =
        (classes.activeBytes + classes.wiredBytes + classes.compressedBytes) / classes.pageSize;
    result.pressure = std::min(pagesUnderPressure / totalPages * 100.0, 100.0);
    return result;
}

std::string pressureText(std::string_view sourceText) {
    const std::string_view trimmed = trimmingWhiteSpace(sourceText);
    return std::string(trimmed.empty() ? "Memory pressure unavailable" : trimmed);
}

}  // namespace tallowcrest
