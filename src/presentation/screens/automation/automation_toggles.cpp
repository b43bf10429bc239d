#include "presentation/screens/automation/automation_toggles.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/automation/automation_toggle.h"
#include "presentation/widgets/theme.h"

namespace tallowcrest {

AutomationToggles::AutomationToggles(SystemMonitor& monitor, const QString& identifier,
                                     std::span<const AutomationSwitch> switches, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::gap);
    for (const AutomationSwitch which : switches) {
        auto* row = new AutomationToggle(identifier + u'.' + automationIdentifier(which), this);
        connect(row, &AutomationToggle::wanted, this, [this, which](bool on) {
            monitor_.automation().set(which, on);
            refresh();
        });
        layout->addWidget(row);
        rows_.emplace_back(which, row);
    }
    refresh();
}

void AutomationToggles::refresh() {
    const auto& snapshot = monitor_.sample().snapshot();
    const Automation& automation = monitor_.automation();
    const AutomationFacts facts{automation.isStopEngaged(), monitor_.autoRules().dates(),
                                monitor_.log().activityLog(),
                                snapshot ? snapshot->sampledAt : Date{}};
    for (const auto& [which, row] : rows_) {
        row->setLine(automationLine(which, automation.isOn(which), facts));
    }
}

}  // namespace tallowcrest
