#pragma once

#include "presentation/shell/dashboard_sections.h"
#include "presentation/shell/navigation.h"

namespace tallowcrest {

/// What the window keeps of itself while pages come and go. Main thread.
struct WindowState {
    WindowState(SettingsOwner& settings, ActivityLog& log, MainQueue& mainQueue,
                bool showSetupWizard)
        : navigation(mainQueue, showSetupWizard), sections(settings, log) {}

    Navigation navigation;
    DashboardSections sections;
};

}  // namespace tallowcrest
