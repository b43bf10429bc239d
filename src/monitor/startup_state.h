#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/settings/settings.h"

namespace tallowcrest {

/// What the monitor's status lines say before the first sample.
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
    /// The process's own arguments; the exact word "--ui-testing" keeps the setup wizard away.
    std::vector<std::string> processArguments;
};

StartupState startupState(const Settings& settings, const StartupFindings& findings);

}  // namespace tallowcrest
