#pragma once

namespace tallowcrest {

/// From now on a crash of this process leaves no core dump, neither in a file nor at a program that
/// collects them: called before a key comes into memory. Programs that are started later inherit
/// this. A debugger still works. Where the system refuses, nothing changes. Any thread.
void forbidCoreDumps();

}  // namespace tallowcrest
