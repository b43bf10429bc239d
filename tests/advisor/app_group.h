#pragma once

#include <string>
#include <utility>

#include "core/local_records.h"

namespace tallowcrest {

inline AppImpact appGroup(std::string name, double totalMemoryMB = 0.0) {
    AppImpact group;
    group.name = std::move(name);
    group.totalMemoryMB = totalMemoryMB;
    return group;
}

}  // namespace tallowcrest
