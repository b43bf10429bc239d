#pragma once

#include <sys/types.h>

#include <fstream>
#include <string>

namespace tallowcrest {

/// Whether a process, or a thread by its own id, sleeps, as the kernel says.
inline bool isAsleep(pid_t id) {
    std::ifstream file("/proc/" + std::to_string(id) + "/stat");
    std::string text;
    std::getline(file, text);
    return text.find(") S ") != std::string::npos;
}

}  // namespace tallowcrest
