#include "presentation/screens/shared/remote_timeline_card.h"

#include <array>
#include <utility>

#include <QVBoxLayout>

#include "presentation/screens/shared/timeline_graph.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/card_grid.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/remote_timeline.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

// The accent of the text: the lines of all machines must be equally easy to see.
constexpr std::array<QColor CrestTheme::*, mostRemoteLines> lineColors{
    &CrestTheme::accentText, &CrestTheme::secondSeries, &CrestTheme::thirdSeries,
    &CrestTheme::fourthSeries};

QWidget* titled(const QString& title, StableLineGraph* graph) {
    auto* part = new QWidget;
    setSpokenName(*part, title);
    auto* layout = new QVBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    layout->addWidget(new ElidedLabel(title, onCard(&CrestFonts::heading), part));
    layout->addWidget(graph);
    return part;
}

}  // namespace

RemoteTimelineCard::RemoteTimelineCard(const QString& identifier, QWidget* parent) : Card(parent) {
    setObjectName(identifier);
    setHeader(u"chart.xyaxis.line"_s, u"Remote Timeline"_s);
    const auto addWords = [this](const QString& name) {
        auto* label = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
        label->setObjectName(name);
        label->setLines(1, 3);
        contentLayout()->addWidget(label);
        return label;
    };
    retained_ = addWords(identifier + u".retained"_s);
    constexpr int narrowestGraph = 360;
    graphs_ = new CardGrid(narrowestGraph, this);
    memory_ = makeTimelineGraph(identifier + u".memory"_s, graphs_);
    cpu_ = makeTimelineGraph(identifier + u".cpu"_s, graphs_);
    graphs_->addCard(titled(u"Memory"_s, memory_));
    graphs_->addCard(titled(u"CPU"_s, cpu_));
    graphs_->setShownCount(2);
    contentLayout()->addWidget(graphs_);
    leftOut_ = addWords(identifier + u".left-out"_s);
    show({}, {});
}

void RemoteTimelineCard::show(const std::vector<RemoteHistoryPoint>& history, Date now,
                              const std::map<std::string, RemoteProfile>& profiles,
                              const std::string& selectedHost) {
    const Points points{history.size(),
                        history.empty() ? std::nullopt : std::optional(history.back().id),
                        dashboard_text::localDay(now)};
    if (shown_ && shown_->points == points && shown_->profiles == profiles &&
        shown_->selectedHost == selectedHost) {
        return;
    }
    shown_ = {points, profiles, selectedHost};
    setCaption(lastRemoteSample(history, now));
    retained_->setText(remoteSamplesRetained(history.size()));
    graphs_->setVisible(!history.empty());
    showLines(remoteTimeline(history, selectedHost, profiles));
}

void RemoteTimelineCard::showLines(const RemoteTimeline& timeline) {
    GraphTimes times{{}, timeline.gaps};
    for (const Date& scan : timeline.scans) {
        times.seconds.push_back(scan.secondsSinceReference);
    }
    const auto setLines = [&](StableLineGraph& graph,
                              std::vector<double> RemoteTimelineLine::*values) {
        std::vector<StableGraphSeries> series;
        for (const RemoteTimelineLine& line : timeline.lines) {
            series.push_back({line.name, lineColors.at(series.size()), line.*values, false,
                              line.missing, line.host});
        }
        graph.setSeries(std::move(series), times);
    };
    setLines(*memory_, &RemoteTimelineLine::memory);
    setLines(*cpu_, &RemoteTimelineLine::cpu);
    leftOut_->setText(remoteMachinesLeftOut(timeline));
    leftOut_->setVisible(timeline.machinesLeftOut > 0);
}

}  // namespace tallowcrest
