#include "presentation/screens/coming/coming_page.h"

#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/disk_autopilot.h"
#include "presentation/screens/shared/disk_autopilot_block.h"
#include "presentation/screens/shared/workspace_bar.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QString comingLine(AppRoute route) {
    switch (route) {
        case AppRoute::optimizationSuggestions:
            return u"Here you will find the next steps for CPU, memory and disk, most useful first."_s;
        case AppRoute::aiAdvisor:
            return u"Here you will read explained recommendations and review proposed actions."_s;
        case AppRoute::chat:
            return u"Here you will ask questions about the current diagnostics."_s;
        default:
            // The others have screens of their own.
            return {};
    }
}

}  // namespace

ComingPage::ComingPage(SystemMonitor& monitor, WindowState& state, AppRoute route, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state), route_(route) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    if (WorkspaceBar::isStep(route)) {
        auto* bar = new WorkspaceBar(route, content);
        connect(bar, &WorkspaceBar::routeWanted, this,
                [this](AppRoute wanted) { state_.navigation.setSelectedRoute(wanted); });
        layout->addWidget(bar);
    }
    auto* card = new Card(content);
    card->setObjectName(u"coming."_s + dashboard_text::text(rawValue(route)));
    card->setAccessibleName(dashboard_text::text(title(route)));
    line_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    line_->setObjectName(card->objectName() + u".line"_s);
    line_->setLines(1, 3);
    card->contentLayout()->addWidget(line_);
    layout->addWidget(card);
    if (route == AppRoute::optimizationSuggestions) {
        disk_ = makeDiskAutopilot(u"suggestions"_s, monitor_.actions().automation, state_.sections);
        layout->addWidget(disk_);
    }
    layout->addStretch(1);
    scrollOnPage(content, *this);
}

std::vector<Observable*> ComingPage::shows() const {
    std::vector<Observable*> shown{&monitor_.sample().observable()};
    if (disk_ != nullptr) {
        shown.push_back(&monitor_.settingsOwner().observable());
        shown.push_back(&monitor_.actions().automation.observable());
    }
    return shown;
}

std::vector<HeaderAction> ComingPage::headerActions() {
    if (route_ != AppRoute::aiAdvisor) {
        return {};
    }
    return {{{"Open Chat", "message", "Goes to Chat"}, u"aiAdvisor.open-chat"_s, [this] {
                 state_.navigation.setSelectedRoute(AppRoute::chat);
             }}};
}

void ComingPage::refresh() {
    line_->setText(monitor_.sample().snapshot() ? comingLine(route_) : u"Sampling this Mac..."_s);
    if (disk_ != nullptr) {
        showDiskAutopilot(*disk_, state_.sections, diskAutopilotFacts(monitor_));
    }
}

}  // namespace tallowcrest
