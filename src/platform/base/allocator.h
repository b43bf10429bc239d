#pragma once

namespace tallowcrest {

/// Lets all threads allocate from one place. Each has one of its own otherwise, and keeps there
/// what it has freed. For a program whose threads seldom allocate at the same time; to be called
/// before there is another thread. Without effect where the C library has no such setting.
void useOneArena();

/// Gives memory that was freed back to the system. Takes about a millisecond, in which other
/// threads cannot allocate; for after rare work that needed much. Without effect where the C
/// library has no such operation. Any thread.
void returnFreedMemory();

}  // namespace tallowcrest
