#include "presentation/screens/overview/timeline_block.h"

#include <utility>

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "presentation/screens/shared/timeline_graph.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/figure_row.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

TimelineBlock::TimelineBlock()
    : OverviewBlock(DashboardSection::recentLoad, u"overview.timeline"_s, u"waveform.path.ecg"_s,
                    u"Live Performance Timeline"_s) {
    reserveSectionCaption(dashboard_text::timelineCaption(longestSessionSeconds));
    graph_ = makeTimelineGraph(u"overview.timeline.graph"_s, body());
    bodyLayout()->addWidget(graph_, 1);
    figures_ =
        new FigureRow({u"CPU now"_s, u"Memory now"_s, u"CPU peak"_s, u"Memory peak"_s}, body());
    averages_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), body());
    averages_->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    auto* below = new QHBoxLayout;
    below->setSpacing(spacing::gap);
    below->addWidget(figures_, 4);
    below->addWidget(averages_, 2, Qt::AlignBottom);
    bodyLayout()->addLayout(below);
}

void TimelineBlock::show(const TimelineFacts& facts, bool hasSample) {
    using dashboard_text::percentText;
    setSectionCaption(dashboard_text::timelineCaption(sessionSeconds(facts.history)));
    if (isCollapsed()) {
        return;
    }
    TimelineSummary summary = timelineSummary(facts.history);
    if (hasSample) {
        figures_->setFigures({percentText(summary.cpuNow), percentText(summary.memoryNow),
                              percentText(summary.cpuPeak), percentText(summary.memoryPeak)});
        averages_->setText(
            dashboard_text::averageAndThreshold(summary.cpuAverage, facts.warningThreshold));
    } else {
        const QString none = dashboard_text::noFigure();
        figures_->setFigures({none, none, none, none});
        averages_->setText(QString());
    }
    showTimeline(*graph_, facts, std::move(summary));
}

}  // namespace tallowcrest
