#pragma once

using integer_t = int;
using natural_t = unsigned;
using kern_return_t = int;
using mach_port_t = natural_t;
using host_t = mach_port_t;
using host_flavor_t = integer_t;
using host_info_t = integer_t*;
using mach_msg_type_number_t = natural_t;

enum { CPU_STATE_USER, CPU_STATE_SYSTEM, CPU_STATE_IDLE, CPU_STATE_NICE, CPU_STATE_MAX };

struct host_cpu_load_info_data_t {
    natural_t cpu_ticks[CPU_STATE_MAX];
};

constexpr kern_return_t KERN_SUCCESS = 0;
constexpr host_flavor_t HOST_CPU_LOAD_INFO = 3;
constexpr mach_msg_type_number_t HOST_CPU_LOAD_INFO_COUNT = CPU_STATE_MAX;

extern "C" {
host_t mach_host_self();
mach_port_t mach_task_self();
kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t name);
kern_return_t host_statistics(host_t host, host_flavor_t flavor, host_info_t information,
                              mach_msg_type_number_t* count);
}
