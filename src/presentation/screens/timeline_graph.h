#pragma once

#include "presentation/words/timeline.h"

namespace tallowcrest {

class StableLineGraph;

/// Shows the session in `graph`: CPU and memory, the events of the activity log, and the warning
/// threshold. `summary` is the one of the history. Main thread.
void showTimeline(StableLineGraph& graph, const TimelineFacts& facts, TimelineSummary summary);

}  // namespace tallowcrest
