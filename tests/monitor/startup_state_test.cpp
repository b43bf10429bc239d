#include "monitor/startup_state.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

StartupFindings findings(bool openAIKey, bool publicKey, std::vector<std::string> arguments = {}) {
    return {openAIKey, publicKey, std::move(arguments)};
}

TEST(StartupState, WithoutKeys) {
    const StartupState state = startupState({}, {});
    EXPECT_FALSE(state.openAIKeySaved);
    EXPECT_EQ(state.storageAnalysisRootName, "Personal folders");
    EXPECT_EQ(state.aiInsight,
              "Local recommendations are active. Connect paid AI for deeper explanations and "
              "follow-up questions.");
    EXPECT_EQ(state.localPublicKeyStatus,
              "No local SSH public key found. Generate one with ssh-keygen.");
}

TEST(StartupState, WithAProviderKey) {
    const StartupState state = startupState({}, findings(true, false));
    EXPECT_TRUE(state.openAIKeySaved);
    EXPECT_EQ(state.aiInsight, "Enhanced AI recommendations are ready.");
    EXPECT_EQ(state.localPublicKeyStatus,
              "No local SSH public key found. Generate one with ssh-keygen.");
}

TEST(StartupState, WithAPublicKey) {
    const StartupState state = startupState({}, findings(false, true));
    EXPECT_EQ(state.localPublicKeyStatus, "Local SSH public key found.");
    EXPECT_FALSE(state.openAIKeySaved);
}

TEST(StartupState, SetupWizardShowsUntilTheFirstRunIsComplete) {
    Settings settings;
    EXPECT_TRUE(startupState(settings, {}).showSetupWizard);
    settings.firstRunComplete = true;
    EXPECT_FALSE(startupState(settings, {}).showSetupWizard);
}

TEST(StartupState, OnlyTheExactOptionKeepsTheSetupWizardAway) {
    struct Case {
        std::vector<std::string> arguments;
        bool shown;
    };
    for (const Case& c :
         {Case{{"tallowcrest", "--ui-testing"}, false},
          Case{{"tallowcrest", "--other", "--ui-testing", "more"}, false},
          Case{{"tallowcrest"}, true}, Case{{"tallowcrest", "--UI-TESTING"}, true},
          Case{{"tallowcrest", "--ui-testing=1"}, true},
          Case{{"tallowcrest", "--ui-testing "}, true}, Case{{"tallowcrest", "-ui-testing"}, true},
          Case{{"tallowcrest", "--ui-testing-more"}, true},
          Case{{"tallowcrest", "--ui-testing --ui-testing"}, true}}) {
        EXPECT_EQ(startupState({}, findings(false, false, c.arguments)).showSetupWizard, c.shown)
            << c.arguments.back();
    }
    Settings settings;
    settings.firstRunComplete = true;
    EXPECT_FALSE(startupState(settings, findings(false, false, {"tallowcrest", "--ui-testing"}))
                     .showSetupWizard);
}

}  // namespace
}  // namespace tallowcrest
