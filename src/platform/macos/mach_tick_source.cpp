#include "platform/macos/mach_tick_source.h"

#include <mach/mach.h>

#include <chrono>

namespace tallowcrest {

std::optional<CPUTickReading> MachTickSource::readTicks() {
    host_cpu_load_info_data_t info{};
    mach_msg_type_number_t count = HOST_CPU_LOAD_INFO_COUNT;
    // Each call adds a reference to the host port, which must be released.
    const host_t host = mach_host_self();
    const kern_return_t status =
        host_statistics(host, HOST_CPU_LOAD_INFO, reinterpret_cast<host_info_t>(&info), &count);
    mach_port_deallocate(mach_task_self(), host);
    if (status != KERN_SUCCESS) {
        return std::nullopt;
    }
    CPUTicks ticks;
    ticks.user = info.cpu_ticks[CPU_STATE_USER];
    ticks.system = info.cpu_ticks[CPU_STATE_SYSTEM];
    ticks.idle = info.cpu_ticks[CPU_STATE_IDLE];
    ticks.nice = info.cpu_ticks[CPU_STATE_NICE];
    return CPUTickReading{ticks, std::chrono::steady_clock::now().time_since_epoch()};
}

}  // namespace tallowcrest
