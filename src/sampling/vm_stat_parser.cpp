#include "sampling/vm_stat_parser.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "core/number_text.h"
#include "core/text.h"
#include "sampling/memory.h"

namespace tallowcrest {
namespace {

constexpr std::int64_t defaultPageSize = 4096;

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

}  // namespace

std::int64_t parsePageSize(std::string_view vmStatText) {
    constexpr std::string_view before = "page size of ";
    constexpr std::string_view after = " bytes";
    for (std::size_t at = vmStatText.find(before); at != std::string_view::npos;
         at = vmStatText.find(before, at + 1)) {
        const std::string_view rest = vmStatText.substr(at + before.size());
        const auto digitsEnd = std::find_if_not(rest.begin(), rest.end(), isDigit);
        const std::string_view digits =
            rest.substr(0, static_cast<std::size_t>(digitsEnd - rest.begin()));
        if (!digits.empty() && rest.substr(digits.size()).starts_with(after)) {
            // Sizes are divided by it later.
            const std::int64_t size = parseDecimalInteger(digits).value_or(0);
            return size > 0 ? size : defaultPageSize;
        }
    }
    return defaultPageSize;
}

PageCounts parsePageCounts(std::string_view vmStatText) {
    PageCounts counts;
    std::string digits;
    while (const auto line = takeLine(vmStatText)) {
        const std::size_t colon = line->find(':');
        if (colon == 0 || colon == std::string_view::npos) {
            continue;
        }
        const std::string_view value = line->substr(colon + 1);
        digits.clear();
        std::copy_if(value.begin(), value.end(), std::back_inserter(digits), isDigit);
        if (const auto count = parseDecimalInteger(digits)) {
            counts.insert_or_assign(std::string(line->substr(0, colon)), *count);
        }
    }
    return counts;
}

MemorySnapshot memorySnapshot(std::string_view memsizeText, std::string_view vmStatText) {
    const PageCounts counts = parsePageCounts(vmStatText);
    MemoryClasses classes;
    classes.pageSize = static_cast<double>(parsePageSize(vmStatText));
    const auto bytes = [&](std::string_view key) {
        const auto found = counts.find(key);
        return found == counts.end() ? 0.0 : static_cast<double>(found->second) * classes.pageSize;
    };
    // A negative size means that it could not be read.
    const std::int64_t physical = parseDecimalInteger(trimmingWhiteSpace(memsizeText)).value_or(0);
    classes.physicalBytes = static_cast<double>(std::max<std::int64_t>(physical, 0));
    classes.freeBytes = bytes("Pages free");
    classes.speculativeBytes = bytes("Pages speculative");
    classes.wiredBytes = bytes("Pages wired down");
    classes.compressedBytes = bytes("Pages occupied by compressor");
    classes.activeBytes = bytes("Pages active");
    return memorySnapshot(classes);
}

}  // namespace tallowcrest
