#pragma once

#include <cstdint>

namespace tallowcrest {

class SystemMonitor;

/// Selects a process for review from another place than its row, says so in the status line and
/// goes to Processes, where no filter hides the row. A process that has left the table only leads
/// to a message. Main thread.
void reviewInProcesses(SystemMonitor& monitor, std::int64_t pid);

/// Empties the filter of the process list when it hides the process under review. Main thread.
void freeFromFilter(SystemMonitor& monitor);

}  // namespace tallowcrest
