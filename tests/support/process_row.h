#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "core/local_records.h"

namespace tallowcrest {

/// A row of the process table whose arguments are only its command.
inline ProcessSample processRow(std::int64_t pid, std::string command, double cpu = 0.0,
                                double rssMB = 0.0) {
    ProcessSample row;
    row.pid = pid;
    row.command = std::move(command);
    row.arguments = row.command;
    row.cpu = cpu;
    row.rssMB = rssMB;
    return row;
}

}  // namespace tallowcrest
