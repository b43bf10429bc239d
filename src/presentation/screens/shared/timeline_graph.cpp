#include "presentation/screens/shared/timeline_graph.h"

#include <utility>

#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

StableLineGraph* makeTimelineGraph(const QString& identifier, QWidget* parent) {
    using namespace dashboard_text;
    const auto inMinutes = [](double seconds, double now) {
        return shortTimeText({seconds}, {now});
    };
    const auto inSeconds = [](double seconds, double now) {
        return pointTimeText({seconds}, {now});
    };
    auto* graph = new StableLineGraph({percentText, {inMinutes, inSeconds}}, parent);
    graph->setObjectName(identifier);
    graph->setMinimumHeight(20 * spacing::unit);
    return graph;
}

void showTimeline(StableLineGraph& graph, const TimelineFacts& facts, TimelineSummary summary) {
    using dashboard_text::text;
    const std::vector<HistoryPoint>& history = facts.history;
    const Date now = history.empty() ? Date{} : history.back().date;
    std::vector<double> fractions;
    std::vector<GraphEventLabel> labels;
    for (const auto& [event, fraction] : timelineEvents(facts.activityLog, history, now)) {
        fractions.push_back(fraction);
        labels.push_back(
            {text(event->title), text(event->detail), event->date.secondsSinceReference});
    }
    GraphTimes times{{}, timelineGaps(history)};
    times.seconds.reserve(history.size());
    for (const HistoryPoint& point : history) {
        times.seconds.push_back(point.date.secondsSinceReference);
    }
    graph.setEventFractions(std::move(fractions), std::move(labels));
    graph.setWarningThreshold(facts.warningThreshold);
    graph.setSeries({{u"CPU"_s, &CrestTheme::accent, std::move(summary.cpu), true},
                     {u"Memory"_s, &CrestTheme::secondSeries, std::move(summary.memory), false}},
                    std::move(times));
}

}  // namespace tallowcrest
