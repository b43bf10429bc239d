#pragma once

#include <functional>
#include <set>
#include <string>

#include "core/activity_log.h"
#include "core/observable.h"
#include "core/routes.h"
#include "core/settings_store.h"

namespace tallowcrest {

/// Which sections of the dashboard the owner has closed. Every change is stored at once.
/// Main thread.
class DashboardSections {
public:
    /// Raw values of `DashboardSection`. Texts that are none stand for nothing here; they stay
    /// until all sections are expanded, since they may belong to another version of the system.
    using RawValues = std::set<std::string, std::less<>>;

    /// Takes over `collapsedSections` as it stands and changes it in place.
    DashboardSections(RawValues& collapsedSections, SettingsStore& store, ActivityLog& log,
                      Observable& observable);

    bool isCollapsed(DashboardSection section) const;
    /// Stores and tells only what is a change.
    void setCollapsed(DashboardSection section, bool collapsed);
    void toggle(DashboardSection section);

    /// Empties `collapsedSections` and reports so.
    void expandAll();
    /// Puts every section into `collapsedSections` and reports so.
    void collapseAll();

private:
    void save();

    RawValues& collapsedSections_;
    SettingsStore& store_;
    ActivityLog& log_;
    Observable& observable_;
};

}  // namespace tallowcrest
