#pragma once

namespace tallowcrest {

/// Prepares libcurl on the first call, so that it overwrites all memory that it releases: it keeps
/// copies of the header with the key. Nothing else in the process may have prepared it before.
/// False when the library cannot be used. The first call reads variables of the environment, so it
/// is made with `environmentLock` of the program, or while there is only one thread. Any thread.
bool prepareCurl();

}  // namespace tallowcrest
