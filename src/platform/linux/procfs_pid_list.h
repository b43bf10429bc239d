#pragma once

#include <cstdint>
#include <vector>

namespace tallowcrest {

/// Stores the process numbers that the directory lists into `pids`, ascending and each once. False
/// when the directory cannot be listed; `pids` then holds nothing. The descriptor's position moves,
/// so one descriptor serves one thread at a time.
bool listProcessIDs(int procDirectory, std::vector<std::int32_t>& pids);

}  // namespace tallowcrest
