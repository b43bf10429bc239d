#pragma once

namespace tallowcrest {

/// Lets all threads allocate from one place. Each has one of its own otherwise, and keeps there
/// what it has freed. For a program whose threads seldom allocate at the same time; to be called
/// before there is another thread. Without effect where the C library has no such setting.
void useOneArena();

}  // namespace tallowcrest
