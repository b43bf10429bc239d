#pragma once

#include <sys/time.h>
#include <sys/types.h>

#include <cstddef>

constexpr int CTL_KERN = 1;
constexpr int KERN_PROC = 14;
constexpr int KERN_PROC_ALL = 0;
constexpr int KERN_PROC_PID = 1;

struct extern_proc {
    timeval p_starttime;
    pid_t p_pid;
};
struct kinfo_proc {
    extern_proc kp_proc;
};

extern "C" int sysctl(int* name, unsigned nameLength, void* value, std::size_t* size,
                      void* newValue, std::size_t newSize);
