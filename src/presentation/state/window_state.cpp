#include "presentation/state/window_state.h"

#include <utility>

#include "core/activity_log.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"

namespace tallowcrest {

Navigation::Navigation(MainQueue& mainQueue)
    : observable_(std::make_unique<Observable>(mainQueue)) {}

Navigation::~Navigation() = default;

void Navigation::notifyObservers() {
    observable_->changed();
}

bool DashboardSections::isCollapsed(DashboardSection section) const {
    return settings_.values().collapsedSections.contains(rawValue(section));
}

void DashboardSections::setCollapsed(DashboardSection section, bool collapsed) {
    if (collapsed == isCollapsed(section)) {
        return;
    }
    TextSet sections = settings_.values().collapsedSections;
    if (collapsed) {
        sections.emplace(rawValue(section));
    } else {
        sections.erase(sections.find(rawValue(section)));
    }
    settings_.set(&Settings::collapsedSections, std::move(sections));
}

Outcome DashboardSections::expandAll() {
    settings_.set(&Settings::collapsedSections, {});
    return log_.record(Outcome::done("Expanded all dashboard sections."));
}

Outcome DashboardSections::collapseAll() {
    TextSet sections = settings_.values().collapsedSections;
    for (const DashboardSection section : allDashboardSections) {
        sections.emplace(rawValue(section));
    }
    settings_.set(&Settings::collapsedSections, std::move(sections));
    return log_.record(Outcome::done("Collapsed all dashboard sections."));
}

Outcome WindowState::completeFirstRun() {
    settings_.set(&Settings::firstRunComplete, true);
    navigation.setShowSetupWizard(false);
    return log_.record(Outcome::done("First-run setup completed."));
}

}  // namespace tallowcrest
