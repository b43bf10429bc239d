#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sampling/vm_stat_parser.h"

#include "fuzz/require.h"

/// The input is the text of the physical memory, a zero byte, and the text of the page counts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string input(data, data + size);
    const std::size_t border = input.find('\0');
    const std::string memsize = input.substr(0, border);
    const std::string vmStat = border == std::string::npos ? "" : input.substr(border + 1);

    require(parsePageSize(vmStat) > 0);
    for (const auto& [key, count] : parsePageCounts(vmStat)) {
        require(count >= 0);
        require(!key.empty() && key.find(':') == std::string::npos);
        require(key.find('\n') == std::string::npos);
    }

    const MemorySnapshot memory = memorySnapshot(memsize, vmStat);
    constexpr double largest = 1e31;
    for (const double figure :
         {memory.totalGB, memory.usedGB, memory.freeGB, memory.wiredGB, memory.compressedGB}) {
        require(figure >= 0.0 && figure <= largest);
    }
    require(memory.usedGB <= memory.totalGB);
    require(memory.pressure >= 0.0 && memory.pressure <= 100.0);
    return 0;
}
