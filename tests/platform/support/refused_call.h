#pragma once

#include <cstdint>

namespace tallowcrest {

/// Makes one system call (`SYS_...`) fail with `error` on the calling thread, and in whatever it
/// starts, from now on. Other threads are not affected. Returns false where this account may not
/// install the filter.
bool refuseCall(std::uint32_t call, int error);

}  // namespace tallowcrest
