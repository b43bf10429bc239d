#pragma once

#include <cstdint>

namespace tallowcrest {

class Navigation;
class ProcessDetails;
class ReviewTarget;

/// Selects a process of the latest sample for review, reports that in the status line, and opens
/// Processes without a filter that hides its row. For a process that has left the table, only
/// reports that there is nothing to select. Main thread.
void reviewInProcesses(std::int64_t pid, ReviewTarget& review, const ProcessDetails& details,
                       Navigation& navigation);

/// Empties the filter of the process list when it hides the process under review. `details` are
/// what the filter searches besides the rows. Main thread.
void clearHidingFilter(const ReviewTarget& review, const ProcessDetails& details,
                       Navigation& navigation);

}  // namespace tallowcrest
