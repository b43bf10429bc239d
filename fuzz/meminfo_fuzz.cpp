#include <cstddef>
#include <cstdint>
#include <string>

#include "sampling/proc_parser.h"

#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string text(data, data + size);

    for (const std::uint64_t zramBytes : {std::uint64_t{0}, ~std::uint64_t{0}}) {
        const MemoryClasses classes = parseMemoryInfo(text, zramBytes, 4096.0);
        constexpr double largest = 1e24;
        for (const double bytes :
             {classes.physicalBytes, classes.freeBytes, classes.speculativeBytes,
              classes.wiredBytes, classes.compressedBytes, classes.activeBytes}) {
            require(bytes >= 0.0 && bytes <= largest);
        }
        const MemorySnapshot memory = memorySnapshot(classes);
        require(memory.usedGB >= 0.0 && memory.usedGB <= memory.totalGB);
        require(memory.pressure >= 0.0 && memory.pressure <= 100.0);
    }

    // Unused lines have no effect.
    require(parseMemoryInfo("Mlocked: 5 kB\n" + text, 0, 4096.0) ==
            parseMemoryInfo(text, 0, 4096.0));
    return 0;
}
