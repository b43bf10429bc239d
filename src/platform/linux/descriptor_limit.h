#pragma once

namespace tallowcrest {

/// Raises the number of files that this process may have open at once to the highest that it may
/// grant itself. The process table keeps one per process open. Where the system refuses, the limit
/// stays. Tools that are launched later inherit the raised limit.
void raiseDescriptorLimit();

}  // namespace tallowcrest
