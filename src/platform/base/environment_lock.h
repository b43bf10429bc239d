#pragma once

#include <mutex>

namespace tallowcrest {

/// To be held while the running program changes its environment, and while a thread other than the
/// main one reads it, be it within a library: a variable that goes moves those behind it. Any
/// thread, for moments alone.
std::mutex& environmentLock();

}  // namespace tallowcrest
