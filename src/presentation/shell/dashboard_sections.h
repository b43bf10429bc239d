#pragma once

#include "core/outcome.h"
#include "core/routes.h"

namespace tallowcrest {

class ActivityLog;
class SettingsOwner;

/// Which sections of the dashboard the owner has closed. Every change is stored at once.
/// Main thread.
class DashboardSections {
public:
    /// Texts that are no section's raw value stand for nothing here; they stay stored until all
    /// sections are expanded, since they may belong to another version of the system. The
    /// references must outlive the object.
    DashboardSections(SettingsOwner& settings, ActivityLog& log) : settings_(settings), log_(log) {}

    bool isCollapsed(DashboardSection section) const;
    /// Stores and tells only what is a change.
    void setCollapsed(DashboardSection section, bool collapsed);

    /// Empties `collapsedSections` and reports so.
    Outcome expandAll();
    /// Puts every section into `collapsedSections` and reports so.
    Outcome collapseAll();

private:
    SettingsOwner& settings_;
    ActivityLog& log_;
};

}  // namespace tallowcrest
