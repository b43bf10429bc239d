#include "monitor/startup_state.h"

#include <algorithm>

namespace tallowcrest {

StartupState startupState(const Settings& settings, const StartupFindings& findings) {
    StartupState state;
    state.openAIKeySaved = findings.openAIKeyFound;
    state.storageAnalysisRootName = "Personal folders";
    state.aiInsight = findings.openAIKeyFound
                          ? "Enhanced AI recommendations are ready."
                          : "Local recommendations are active. Connect paid AI for deeper "
                            "explanations and follow-up questions.";
    state.localPublicKeyStatus =
        findings.localPublicKeyFound
            ? "Local SSH public key found."
            : "No local SSH public key found. Generate one with ssh-keygen.";
    const auto& arguments = findings.processArguments;
    const bool isUITest =
        std::find(arguments.begin(), arguments.end(), "--ui-testing") != arguments.end();
    state.showSetupWizard = !isUITest && !settings.firstRunComplete;
    return state;
}

}  // namespace tallowcrest
