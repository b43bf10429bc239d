#pragma once

#include "presentation/words/timeline.h"

namespace tallowcrest {

class StableLineGraph;
class SystemMonitor;

/// Shows the session in `graph`: CPU and memory, the events of the activity log, and the warning
/// threshold. `summary` is the one of the monitor's history. Main thread.
void showTimeline(StableLineGraph& graph, SystemMonitor& monitor, TimelineSummary summary);

}  // namespace tallowcrest
