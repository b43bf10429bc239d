#pragma once

#include <string>
#include <vector>

#include "core/settings/settings.h"

namespace tallowcrest {

/// The initial texts of the monitor's status lines, and whether the setup wizard is shown.
struct StartupState {
    bool openAIKeySaved = false;
    std::string storageAnalysisRootName;
    std::string aiInsight;
    std::string localPublicKeyStatus;
    bool showSetupWizard = false;

    bool operator==(const StartupState&) const = default;
};

/// What was found on this machine while the monitor was being built.
struct StartupFindings {
    bool openAIKeyFound = false;
    bool localPublicKeyFound = false;
    /// The process's own arguments; exactly "--ui-testing" among them keeps the setup wizard away.
    std::vector<std::string> processArguments;
};

/// Pure; any thread.
StartupState startupState(const Settings& settings, const StartupFindings& findings);

}  // namespace tallowcrest
