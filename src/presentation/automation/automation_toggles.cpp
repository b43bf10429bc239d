#include "presentation/automation/automation_toggles.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/automation/automation_toggle.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

QString nameOf(AutomationSwitch which) {
    switch (which) {
        case AutomationSwitch::autoSelectTopOffender:
            return QStringLiteral("auto-select");
        case AutomationSwitch::autoPurgeSustainedMemory:
            return QStringLiteral("auto-purge");
        case AutomationSwitch::autoScanRemoteMacs:
            return QStringLiteral("auto-scan");
        case AutomationSwitch::diskAutopilotEnabled:
            return QStringLiteral("disk-autopilot");
        case AutomationSwitch::aiSafeActionsEnabled:
            return QStringLiteral("ai-safe-actions");
        case AutomationSwitch::notificationsIncludeActions:
            return QStringLiteral("notification-actions");
    }
    return {};
}

}  // namespace

AutomationToggles::AutomationToggles(SystemMonitor& monitor, const QString& identifier,
                                     std::span<const AutomationSwitch> switches, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::gap);
    for (const AutomationSwitch which : switches) {
        auto* row = new AutomationToggle(identifier + u'.' + nameOf(which), this);
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
