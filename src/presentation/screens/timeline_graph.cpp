#include "presentation/screens/timeline_graph.h"

#include <utility>

#include "monitor/system_monitor.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

void showTimeline(StableLineGraph& graph, SystemMonitor& monitor, TimelineSummary summary) {
    const auto& history = monitor.sample().history();
    const Date now = history.empty() ? Date{} : history.back().date;
    graph.setEventFractions(eventFractions(monitor.log().activityLog(), history, now));
    graph.setWarningThreshold(monitor.settings().warningThreshold);
    graph.setSeries({{u"CPU"_s, &CrestTheme::accent, std::move(summary.cpu), true},
                     {u"Memory"_s, &CrestTheme::secondSeries, std::move(summary.memory), false}});
}

}  // namespace tallowcrest
