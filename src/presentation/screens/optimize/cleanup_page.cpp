#include "presentation/screens/optimize/cleanup_page.h"

#include <QVBoxLayout>

#include "actions/automation.h"
#include "actions/external_applications.h"
#include "actions/local_actions.h"
#include "actions/review_target.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/disk_autopilot.h"
#include "presentation/screens/optimize/cleanup_flow_card.h"
#include "presentation/screens/optimize/cleanup_lines.h"
#include "presentation/screens/optimize/offender_card.h"
#include "presentation/screens/optimize/workspace_bar.h"
#include "presentation/screens/overview/disk_autopilot_block.h"
#include "presentation/shell/window_state.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

CleanupPage::CleanupPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    auto* bar = new WorkspaceBar(AppRoute::optimize, content);
    connect(bar, &WorkspaceBar::routeWanted, this,
            [this](AppRoute route) { state_.navigation.setSelectedRoute(route); });
    layout->addWidget(bar);
    layout->addWidget(makeFlow());
    disk_ = makeDiskAutopilot(u"cleanup"_s, monitor_.automation(), state_.sections);
    layout->addWidget(disk_);
    layout->addWidget(makeOffender());
    layout->addStretch(1);

    scrollOnPage(content, *this);
}

QWidget* CleanupPage::makeFlow() {
    flow_ = new CleanupFlowCard;
    connect(flow_, &CleanupFlowCard::safeTargetWanted, this,
            [this] { monitor_.localActions().optimizeSafely(); });
    connect(flow_, &CleanupFlowCard::topAppWanted, this,
            [this] { monitor_.review().selectTopApp(); });
    connect(flow_, &CleanupFlowCard::purgeWanted, this,
            [this] { monitor_.localActions().requestPurge(); });
    connect(flow_, &CleanupFlowCard::activityMonitorWanted, this,
            [this] { monitor_.applications().openActivityMonitor(); });
    return flow_;
}

QWidget* CleanupPage::makeOffender() {
    offender_ = new OffenderCard(monitor_.host().protection);
    connect(offender_, &OffenderCard::reviewWanted, this,
            [this](const ProcessSample& process) { monitor_.review().selectProcess(process); });
    connect(offender_, &OffenderCard::neverQuitToggled, this,
            [this](const std::string& group) { monitor_.localActions().toggleNeverQuit(group); });
    return offender_;
}

std::vector<Observable*> CleanupPage::shows() const {
    return {&monitor_.sample().observable(), &monitor_.review().observable(),
            &monitor_.settingsOwner().observable(), &monitor_.localActions().observable(),
            &monitor_.automation().observable()};
}

void CleanupPage::refresh() {
    flow_->show(dashboard_text::text(monitor_.review().optimizeStep()),
                monitor_.localActions().isPurging());
    showDiskAutopilot(*disk_, state_.sections,
                      {monitor_.sample().snapshot(), monitor_.settings(),
                       monitor_.automation().diskAutopilotStatus(), monitor_.host().places.caches});
    const ReviewTarget& review = monitor_.review();
    const LatestSample& sample = monitor_.sample();
    offender_->show(
        cleanup_lines::offender({.selectedPID = review.selectedPID(),
                                 .selectedRow = review.selectedRow(),
                                 .group = review.selectedAppImpactName(),
                                 .summary = review.selectedTargetSummary(),
                                 .snapshot = sample.snapshot(),
                                 .latestProcesses = sample.latestProcesses(),
                                 .impactOrder = sample.impactOrder(),
                                 .protectedAppNames = monitor_.settings().protectedAppNames}),
        monitor_.settings().protectedAppNames);
}

}  // namespace tallowcrest
