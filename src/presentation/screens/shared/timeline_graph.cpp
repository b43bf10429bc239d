#include "presentation/screens/shared/timeline_graph.h"

#include <utility>

#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

StableLineGraph* makeTimelineGraph(QWidget* parent) {
    using dashboard_text::percentText;
    return new StableLineGraph({percentText(0), percentText(50), percentText(100)}, parent);
}

void showTimeline(StableLineGraph& graph, const TimelineFacts& facts, TimelineSummary summary) {
    const Date now = facts.history.empty() ? Date{} : facts.history.back().date;
    graph.setEventFractions(eventFractions(facts.activityLog, facts.history, now));
    graph.setWarningThreshold(facts.warningThreshold);
    graph.setSeries({{u"CPU"_s, &CrestTheme::accent, std::move(summary.cpu), true},
                     {u"Memory"_s, &CrestTheme::secondSeries, std::move(summary.memory), false}});
}

}  // namespace tallowcrest
