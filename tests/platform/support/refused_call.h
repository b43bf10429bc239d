#pragma once

#include <cstdint>
#include <functional>

namespace tallowcrest {

/// Makes one system call (`SYS_...`) fail with `error` on the calling thread, and in whatever it
/// starts, from now on. Other threads are not affected. Returns false where this account may not
/// install the filter.
bool refuseCall(std::uint32_t call, int error);

/// Runs `work` on a thread that cannot start others. Returns false where this account may not
/// install the filter; it is not run then.
bool runWithoutThreads(const std::function<void()>& work);

}  // namespace tallowcrest
