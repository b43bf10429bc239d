#include "platform/linux/proc_stat_tick_source.h"

#include <array>

#include "sampling/proc_parser.h"

namespace tallowcrest {

std::optional<CPUTicks> ProcStatTickSource::readTicks() {
    // Room for the first line alone: a line for each core follows, and nobody wants them.
    std::array<char, 256> buffer;
    return parseProcessorTicks(stat_.read(buffer));
}

}  // namespace tallowcrest
