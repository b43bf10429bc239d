#include "monitor/dashboard_sections.h"

#include "core/settings_keys.h"

namespace tallowcrest {

DashboardSections::DashboardSections(RawValues& collapsedSections, SettingsStore& store,
                                     ActivityLog& log, Observable& observable)
    : collapsedSections_(collapsedSections), store_(store), log_(log), observable_(observable) {}

bool DashboardSections::isCollapsed(DashboardSection section) const {
    return collapsedSections_.contains(rawValue(section));
}

void DashboardSections::setCollapsed(DashboardSection section, bool collapsed) {
    if (collapsed == isCollapsed(section)) {
        return;
    }
    if (collapsed) {
        collapsedSections_.emplace(rawValue(section));
    } else {
        collapsedSections_.erase(collapsedSections_.find(rawValue(section)));
    }
    save();
}

void DashboardSections::toggle(DashboardSection section) {
    setCollapsed(section, !isCollapsed(section));
}

void DashboardSections::expandAll() {
    collapsedSections_.clear();
    save();
    log_.recordMessage("Expanded all dashboard sections.");
}

void DashboardSections::collapseAll() {
    for (const DashboardSection section : allDashboardSections) {
        collapsedSections_.emplace(rawValue(section));
    }
    save();
    log_.recordMessage("Collapsed all dashboard sections.");
}

void DashboardSections::save() {
    // The set is sorted, and so is what is stored of it.
    store_.write(settings_keys::collapsedSectionsKey,
                 SettingsTextList(collapsedSections_.begin(), collapsedSections_.end()));
    observable_.changed();
}

}  // namespace tallowcrest
