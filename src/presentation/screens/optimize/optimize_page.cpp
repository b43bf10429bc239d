#include "presentation/screens/optimize/optimize_page.h"

#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/desktop_actions.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/optimize/cleanup_flow_card.h"
#include "presentation/screens/optimize/offender_card.h"
#include "presentation/screens/optimize/optimize_lines.h"
#include "presentation/screens/shared/disk_autopilot.h"
#include "presentation/screens/shared/disk_autopilot_block.h"
#include "presentation/screens/shared/workspace_bar.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/two_columns.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/process_words.h"
#include "sampling/latest_sample.h"
#include "sampling/process_details.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

OptimizePage::OptimizePage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    auto* bar = new WorkspaceBar(AppRoute::optimize, content);
    connect(bar, &WorkspaceBar::routeWanted, this,
            [this](AppRoute route) { state_.navigation.setSelectedRoute(route); });
    layout->addWidget(bar);
    makeFlow();
    disk_ = makeDiskAutopilot(u"cleanup"_s, monitor_.actions().automation, monitor_.disk(),
                              state_.sections);
    makeOffender();
    auto* columns = new TwoColumns(content);
    columns->setColumns({flow_, disk_}, {offender_});
    layout->addWidget(columns);
    layout->addStretch(1);

    scrollOnPage(content, *this);
}

void OptimizePage::makeFlow() {
    flow_ = new CleanupFlowCard;
    connect(flow_, &CleanupFlowCard::safeTargetWanted, this,
            [this] { monitor_.actions().local.optimizeSafely(); });
    connect(flow_, &CleanupFlowCard::topAppWanted, this,
            [this] { monitor_.actions().review.selectTopApp(); });
    connect(flow_, &CleanupFlowCard::purgeWanted, this,
            [this] { monitor_.actions().local.requestPurge(); });
    connect(flow_, &CleanupFlowCard::activityMonitorWanted, this,
            [this] { monitor_.actions().applications.openActivityMonitor(); });
}

void OptimizePage::makeOffender() {
    offender_ = new OffenderCard(monitor_.host().protection, monitor_.services().clock);
    offender_->setDetails(
        [this](const ProcessSample& row) { return monitor_.processDetails().find(row); });
    connect(offender_, &OffenderCard::rowsInViewChanged, this, &OptimizePage::wantDetails);
    connect(offender_, &OffenderCard::reviewWanted, this, [this](const ProcessSample& process) {
        monitor_.actions().review.selectProcess(process);
        announce(*this, process_words::underReview(process));
    });
    connect(offender_, &OffenderCard::neverQuitToggled, this,
            [this](const std::string& group) { monitor_.actions().local.toggleNeverQuit(group); });
    connect(offender_, &OffenderCard::quitProcessWanted, this,
            [this] { monitor_.actions().local.requestQuitSelectedProcess(); });
    connect(offender_, &OffenderCard::quitAppWanted, this,
            [this] { monitor_.actions().local.requestQuitSelectedApp(); });
}

std::vector<Observable*> OptimizePage::shows() const {
    return {&monitor_.sample().observable(),         &monitor_.processDetails().observable(),
            &monitor_.actions().review.observable(), &monitor_.settingsOwner().observable(),
            &monitor_.actions().local.observable(),  &monitor_.actions().automation.observable(),
            &monitor_.advisor().trust.observable(),  &monitor_.disk().autopilot.observable(),
            &monitor_.disk().storage.observable(),   &monitor_.log().observable()};
}

std::vector<HeaderAction> OptimizePage::headerActions() {
    return {{commands::selectTopProcess, u"optimize.select-top"_s,
             [this] { announceSelection(monitor_.actions().review.selectTopProcess()); }},
            {commands::selectTopApp.titled("Top App"), u"optimize.top-app"_s,
             [this] { announceSelection(monitor_.actions().review.selectTopApp()); }},
            {commands::purge.titled("Purge"), u"optimize.purge"_s,
             [this] { monitor_.actions().local.requestPurge(); }},
            {commands::activityMonitor.titled("Activity"), u"optimize.activity"_s,
             [this] { monitor_.actions().applications.openActivityMonitor(); }}};
}

void OptimizePage::refresh() {
    flow_->show(dashboard_text::text(monitor_.actions().review.optimizeStep()),
                monitor_.actions().local.isPurging());
    showDiskAutopilot(*disk_, state_.sections, diskAutopilotFacts(monitor_));
    const ReviewTarget& review = monitor_.actions().review;
    const LatestSample& sample = monitor_.sample();
    offender_->show(
        optimize_lines::offender({.selectedPID = review.selectedPID(),
                                  .selectedRow = review.selectedRow(),
                                  .group = review.selectedAppImpactName(),
                                  .summary = review.selectedTargetSummary(),
                                  .snapshot = sample.snapshot(),
                                  .latestProcesses = sample.latestProcesses(),
                                  .impactOrder = sample.impactOrder(),
                                  .protectedAppNames = monitor_.settings().protectedAppNames,
                                  .protection = monitor_.host().protection}),
        monitor_.settings().protectedAppNames);
    const ProcessDetails& details = monitor_.processDetails();
    if (details.revision() != shownDetails_) {
        shownDetails_ = details.revision();
        offender_->showDetails();
    }
    wantDetails();
}

void OptimizePage::wantDetails() {
    if (isVisible()) {
        monitor_.processDetails().want(offender_->rowsInView());
    }
}

}  // namespace tallowcrest
