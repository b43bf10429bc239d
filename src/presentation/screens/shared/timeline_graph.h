#pragma once

#include "presentation/words/timeline.h"

class QWidget;

namespace tallowcrest {

class StableLineGraph;

/// A graph whose scale is in the number format of the locale. Main thread.
StableLineGraph* makeTimelineGraph(QWidget* parent);

/// Shows CPU and memory of the session, the events of the activity log and the warning threshold in
/// `graph`. `summary` is `timelineSummary(facts.history)`. Main thread.
void showTimeline(StableLineGraph& graph, const TimelineFacts& facts, TimelineSummary summary);

}  // namespace tallowcrest
