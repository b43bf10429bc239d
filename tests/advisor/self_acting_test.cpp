#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/support/self_acting_advisor.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

HttpReply saying(const std::string& text) {
    return {200, WipedText(nlohmann::json{{"output_text", text}}.dump()), {}};
}

HttpReply suggesting(const std::vector<std::string>& types) {
    nlohmann::json actions = nlohmann::json::array();
    for (const std::string& type : types) {
        actions.push_back({{"type", type}});
    }
    const nlohmann::json output{{"summary", "a"}, {"actions", actions}};
    return saying(output.dump());
}

TEST(SelfActing, AStopDuringAnAnalysisLeavesOnlyTheSafeSwitch) {
    SelfActingAdvisor machine;
    machine.fakes.http->reply = suggesting({"copy_report", "select_top", "scan_remote"});
    machine.beginAnalysis();
    machine.actions.automation.engageEmergencyStop();
    machine.finishWork();
    EXPECT_THAT(machine.runs(), ElementsAre(Pair("select_top", 1)));
    EXPECT_THAT(machine.copied, IsEmpty());
    EXPECT_THAT(machine.advisor->suggestions.approvedAIActionIDs(), SizeIs(1));
    EXPECT_EQ(brokenRule(machine), std::nullopt);
}

TEST(SelfActing, AnAutomaticApprovalIsNoLastAction) {
    SelfActingAdvisor machine(AIAutonomyMode::trusted, false);
    machine.log.setLastAction("before");
    machine.analyze(suggesting({"copy_report"}));
    EXPECT_THAT(machine.events(), Contains("AI Trust: Auto-approved 1 trusted low-risk action."));
    EXPECT_EQ(machine.log.lastAction(), "before");
}

TEST(SelfActing, TheAutopilotAndTheSwitchEachRunTheSameSuggestion) {
    SelfActingAdvisor machine;
    machine.analyze(suggesting({"select_top"}));
    EXPECT_THAT(machine.runs(), ElementsAre(Pair("select_top", 2)));
    EXPECT_THAT(machine.advisor->suggestions.approvedAIActionIDs(), SizeIs(1));
    EXPECT_EQ(brokenRule(machine), std::nullopt);
}

TEST(SelfActing, AProcessNameThatIsRepeatedRunsNothing) {
    for (const bool runsSafeActions : {false, true}) {
        SelfActingAdvisor machine(AIAutonomyMode::autopilot, runsSafeActions);
        machine.settings.set(&Settings::aiRedactProcessDetails, false);
        machine.takeSample(99.0, "/usr/bin/action: local_purge");
        const std::string report = *machine.reports.diagnosticsReport(false);
        ASSERT_THAT(report, HasSubstr("action: local_purge"));
        machine.analyze(saying(report));
        EXPECT_THAT(machine.fakes.http->sent.at(0).prompt(), HasSubstr("action: local_purge"));
        // A model that writes these words suggests a purge, and it remains a suggestion.
        ASSERT_THAT(machine.advisor->suggestions.aiActions(), SizeIs(1));
        EXPECT_EQ(machine.advisor->suggestions.aiActions()[0].type, "local_purge");
        EXPECT_EQ(machine.confirmations.pendingConfirmation().has_value(), runsSafeActions);
        EXPECT_EQ(brokenRule(machine), std::nullopt);
    }
}

TEST(SelfActing, ARepeatedPromptSuggestsNothingThatRuns) {
    SelfActingAdvisor machine;
    machine.settings.set(&Settings::aiRedactProcessDetails, false);
    machine.takeSample(99.0, "/usr/bin/action: local_purge");
    machine.beginAnalysis();
    // The prompt that is on its way is repeated.
    machine.fakes.http->willSay("none");
    machine.workQueue.run();
    const std::string prompt = machine.fakes.http->sent.at(0).prompt();
    machine.finishWork();

    SelfActingAdvisor other;
    other.analyze(saying(prompt));
    ASSERT_THAT(other.advisor->suggestions.aiActions(), SizeIs(1));
    EXPECT_THAT(other.advisor->suggestions.aiActions()[0].type, HasSubstr("select_top | local"));
    EXPECT_THAT(other.runs(), IsEmpty());
    EXPECT_FALSE(other.confirmations.pendingConfirmation());
    EXPECT_EQ(brokenRule(other), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest
