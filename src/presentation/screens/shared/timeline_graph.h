#pragma once

#include <QString>

#include "presentation/words/timeline.h"

class QWidget;

namespace tallowcrest {

class StableLineGraph;

/// A graph in the formats of the locale, with that object name. Main thread.
StableLineGraph* makeTimelineGraph(const QString& identifier, QWidget* parent);

/// Shows CPU and memory of the session, the events of the activity log and the warning threshold in
/// `graph`. `summary` is `timelineSummary(facts.history)`. Main thread.
void showTimeline(StableLineGraph& graph, const TimelineFacts& facts, TimelineSummary summary);

}  // namespace tallowcrest
