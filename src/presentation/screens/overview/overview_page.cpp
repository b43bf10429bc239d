#include "presentation/screens/overview/overview_page.h"

#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/overview/gauges_block.h"
#include "presentation/screens/overview/overview_lines.h"
#include "presentation/screens/overview/recent_activity_block.h"
#include "presentation/screens/overview/recommendations_block.h"
#include "presentation/screens/overview/session_blocks.h"
#include "presentation/screens/overview/timeline_block.h"
#include "presentation/screens/overview/top_app_memory_block.h"
#include "presentation/screens/overview/top_offender_block.h"
#include "presentation/screens/shared/analysis_action.h"
#include "presentation/screens/shared/disk_autopilot.h"
#include "presentation/screens/shared/disk_autopilot_block.h"
#include "presentation/screens/shared/review_process.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/two_columns.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/recommendation_lines.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

OverviewPage::OverviewPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    layOutBlocks();
    connectBlocks();
}

void OverviewPage::layOutBlocks() {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    const auto add = [&](auto* block) {
        layout->addWidget(block);
        return block;
    };
    // First, so that the top of the page shows whether anything needs attention.
    recommendations_ = add(new RecommendationsBlock);
    gauges_ = add(new GaugesBlock);
    timeline_ = add(new TimelineBlock);
    topAppMemory_ = new TopAppMemoryBlock;
    diskAutopilot_ = makeDiskAutopilot(u"overview"_s, monitor_.actions().automation,
                                       monitor_.disk(), state_.sections);
    topOffender_ = new TopOffenderBlock;
    recentActivity_ = new RecentActivityBlock;
    add(new TwoColumns)
        ->setColumns({topAppMemory_}, {diskAutopilot_, topOffender_, recentActivity_});
    sessionSummary_ = add(new SessionSummaryBlock);
    sessionInsights_ = add(new SessionInsightsBlock);
    layout->addStretch(1);
    blocks_ = {recommendations_, gauges_,         timeline_,       topAppMemory_,
               topOffender_,     recentActivity_, sessionSummary_, sessionInsights_};
    scrollOnPage(content, *this);
}

void OverviewPage::connectBlocks() {
    for (OverviewBlock* block : blocks_) {
        connect(block, &OverviewBlock::collapseWanted, this, [this, block](bool collapsed) {
            state_.sections.setCollapsed(block->section(), collapsed);
        });
    }
    connect(recommendations_, &RecommendationsBlock::reviewWanted, this, [this](std::int64_t pid) {
        reviewInProcesses(pid, monitor_.actions().review, monitor_.processDetails(),
                          state_.navigation);
    });
    connect(topOffender_, &TopOffenderBlock::reviewWanted, this, &OverviewPage::reviewOffender);
    connect(topOffender_, &TopOffenderBlock::cleanupWanted, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::optimize); });
    connect(topOffender_, &TopOffenderBlock::remoteMacsWanted, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::remoteMacs); });
    connect(topOffender_, &TopOffenderBlock::secondOpinionWanted, this, &OverviewPage::analyze);
    connect(recentActivity_, &RecentActivityBlock::historyWanted, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::history); });
}

std::vector<Observable*> OverviewPage::shows() const {
    return {&monitor_.sample().observable(),        &monitor_.log().observable(),
            &monitor_.settingsOwner().observable(), &monitor_.actions().automation.observable(),
            &monitor_.remote().scan.observable(),   &monitor_.advisor().provider.observable(),
            &monitor_.advisor().trust.observable(), &monitor_.disk().autopilot.observable(),
            &monitor_.disk().storage.observable()};
}

std::vector<HeaderAction> OverviewPage::headerActions() {
    return {
        analysisAction(monitor_.advisor().provider, u"overview.analyze"_s, [this] { analyze(); }),
        {{"Review Cleanup", "wand.and.stars", "Goes to Optimize"},
         u"overview.review-cleanup"_s,
         [this] { state_.navigation.setSelectedRoute(AppRoute::optimize); }}};
}

void OverviewPage::analyze() {
    // Where the progress and the answer stand.
    state_.navigation.setSelectedRoute(AppRoute::aiAdvisor);
    monitor_.advisor().provider.requestAIAnalysis();
}

void OverviewPage::refresh() {
    for (OverviewBlock* block : blocks_) {
        block->setCollapsed(state_.sections.isCollapsed(block->section()));
    }
    const LatestSample& sample = monitor_.sample();
    const std::optional<SystemSnapshot>& snapshot = sample.snapshot();
    const auto sampledAt = dashboard_text::sampledAt(snapshot);
    const Settings& settings = monitor_.settings();
    const std::vector<ActivityEvent>& activityLog = monitor_.log().activityLog();
    recommendations_->show(recommendationLines(sample.recommendations(), sample.latestProcesses()),
                           sampledAt);
    gauges_->show(snapshot);
    timeline_->show({sample.history(), activityLog, settings.warningThreshold},
                    snapshot.has_value());
    topAppMemory_->show(snapshot);
    showDiskAutopilot(*diskAutopilot_, state_.sections, diskAutopilotFacts(monitor_));
    const Date now = monitor_.services().clock.now();
    topOffender_->show(offenderFacts(),
                       remoteAlerts(monitor_.remote().scan.state().remoteHealth, now),
                       monitor_.advisor().provider.state().aiBusy);
    recentActivity_->show(activityLog, sampledAt);
    sessionSummary_->show(activityLog, sample.sessionInsights(), settings.protectedAppNames);
    sessionInsights_->show(sample.sessionInsights(), now);
}

TopOffenderFacts OverviewPage::offenderFacts() const {
    return {monitor_.sample().snapshot(), monitor_.sample().latestProcesses(), monitor_.settings(),
            monitor_.host().protection};
}

void OverviewPage::reviewOffender() {
    const auto wanted = topOffender(offenderFacts()).reviewPID;
    if (monitor_.actions().review.selectTopApp().isAccepted() && wanted) {
        clearHidingFilter(monitor_.actions().review, monitor_.processDetails(), state_.navigation);
        state_.navigation.setSelectedRoute(AppRoute::load);
    }
}

}  // namespace tallowcrest
