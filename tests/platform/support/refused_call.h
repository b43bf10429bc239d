#pragma once

#include <cstdint>

namespace tallowcrest {

/// Lets the kernel refuse one of its calls (`SYS_...`) with `error` to the calling thread, and to
/// whatever it starts, from now on; the other threads of this process go on as before. False where
/// this account may not ask for that.
bool refuseCall(std::uint32_t call, int error);

}  // namespace tallowcrest
