#pragma once

#include <cstdint>

#include "sampling/process_details.h"

namespace tallowcrest {

class LatestSample;
class Navigation;
class ReviewTarget;

/// Selects a process of the latest sample for review, reports that in the status line, and opens
/// Processes without a filter that hides its row. For a process that has left the table, only
/// reports that there is nothing to select. Main thread.
void reviewInProcesses(std::int64_t pid, const LatestSample& sample, ReviewTarget& review,
                       Navigation& navigation);

/// Empties the filter of the process list when it hides the process under review. `detailOf` is
/// what the filter searches besides the rows; it may be empty. Main thread.
void clearHidingFilter(const LatestSample& sample, const ReviewTarget& review,
                       Navigation& navigation, const DetailOf& detailOf = {});

}  // namespace tallowcrest
