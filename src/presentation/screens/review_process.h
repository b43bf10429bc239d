#pragma once

#include <cstdint>

namespace tallowcrest {

class LatestSample;
class Navigation;
class ReviewTarget;

/// Selects a process for review from another place than its row, says so in the status line and
/// goes to Processes, where no filter hides the row. A process that has left the table only leads
/// to a message. Main thread.
void reviewInProcesses(std::int64_t pid, const LatestSample& sample, ReviewTarget& review,
                       Navigation& navigation);

/// Empties the filter of the process list when it hides the process under review. Main thread.
void freeFromFilter(const LatestSample& sample, const ReviewTarget& review, Navigation& navigation);

}  // namespace tallowcrest
