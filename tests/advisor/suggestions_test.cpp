#include "advisor/suggestions.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "advisor/action_catalogue.h"
#include "advisor/trust_score.h"
#include "core/record_json.h"
#include "tests/support/advisor_machine.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

AIActionSuggestion suggestionOf(const std::string& type, const std::string& risk = "low") {
    return {UUID::random(), type, "Do " + type, "why", risk};
}

class SuggestionsTest : public ::testing::Test, protected AdvisorMachine {
protected:
    Suggestions& suggestions() { return advisor->suggestions; }
    Trust& trust() { return advisor->trust; }

    void publish(const std::vector<std::string>& types) {
        std::vector<AIActionSuggestion> list;
        for (const std::string& type : types) {
            list.push_back(suggestionOf(type));
        }
        suggestions().setAIActions(list);
        suggestions().clearApprovals();
    }
    const AIActionSuggestion& at(std::size_t index) { return suggestions().aiActions().at(index); }

    /// Approves and runs the one suggestion of a type, without the messages of the approval.
    Outcome approveAndRun(const std::string& type) {
        publish({type});
        suggestions().approveSuggestion(at(0));
        log.clearActivityLog();
        return suggestions().runSuggestion(at(0));
    }

    /// "approved, run, blocked" of a type.
    std::vector<std::int64_t> countsOf(const std::string& type) {
        const auto found = trust().aiTrustRecords().find(type);
        if (found == trust().aiTrustRecords().end()) {
            return {};
        }
        EXPECT_EQ(found->second.actionType, type);
        EXPECT_EQ(found->second.lastUpdated, clock.now());
        return {found->second.approvedCount, found->second.runCount, found->second.blockedCount};
    }
};

TEST_F(SuggestionsTest, NothingRunsUnapproved) {
    takeSample(99.0);
    publish({"select_top", "local_purge", "scan_remote", "copy_report", "export_diagnostics", "x"});
    for (const AIActionSuggestion& each : std::vector(suggestions().aiActions())) {
        EXPECT_EQ(suggestions().runSuggestion(each),
                  Outcome::refused("Approve '" + each.title + "' before running it."));
        EXPECT_EQ(log.lastAction(), "Approve '" + each.title + "' before running it.");
    }
    EXPECT_THAT(trust().aiTrustRecords(), IsEmpty());
    EXPECT_FALSE(actions.review.selectedPID());
    EXPECT_FALSE(confirmations.pendingConfirmation());
    EXPECT_THAT(copied, IsEmpty());
    EXPECT_EQ(workQueue.pendingCount(), 0U);
}

TEST_F(SuggestionsTest, EachTypeCallsItsOperation) {
    takeSample(99.0);
    EXPECT_EQ(approveAndRun("select_top"),
              Outcome::done("Selected the heaviest process inside editor."));
    EXPECT_EQ(actions.review.selectedPID(), 700);

    approveAndRun("local_purge");
    ASSERT_TRUE(confirmations.pendingConfirmation());
    finishWork();
    EXPECT_EQ(localPorts.cachePurge->count, 0) << "it waits for the owner";
    confirmations.confirmPending();
    finishWork();
    EXPECT_EQ(localPorts.cachePurge->count, 1);

    EXPECT_EQ(approveAndRun("scan_remote"),
              Outcome::refused("No online Tailscale Macs are available to scan."));
    EXPECT_EQ(approveAndRun("copy_report"),
              Outcome::done("Copied a performance report to the clipboard."));
    EXPECT_THAT(copied, SizeIs(1));
    EXPECT_EQ(approveAndRun("export_diagnostics"), Outcome::asked());
    finishWork();
    EXPECT_THAT(folder->written, SizeIs(1));
    // A run counts when it is handed on, whatever becomes of it.
    for (const char* type :
         {"select_top", "local_purge", "scan_remote", "copy_report", "export_diagnostics"}) {
        EXPECT_THAT(countsOf(type), ElementsAre(1, 1, 0)) << type;
    }
}

TEST_F(SuggestionsTest, AnUnknownTypeIsInformational) {
    for (const char* type : {"reboot", "disk cleanup", "none ", ""}) {
        const std::string message = "AI action '" + std::string(type) + "' is informational only.";
        EXPECT_EQ(approveAndRun(type), Outcome::refused(message));
        EXPECT_THAT(events(), ElementsAre("Action: " + message));
        EXPECT_THAT(countsOf(type), ElementsAre(1, 0, 1));
    }
}

TEST_F(SuggestionsTest, APurgeNeedsMemoryPressure) {
    settings.set(&Settings::warningThreshold, 85.9);
    const std::string message = "AI purge suggestion blocked because memory pressure is below 85%.";
    EXPECT_EQ(approveAndRun("local_purge"), Outcome::refused(message)) << "without a sample";
    takeSample(84.9);
    EXPECT_EQ(approveAndRun("local_purge"), Outcome::refused(message));
    EXPECT_THAT(events(), ElementsAre("Action: " + message));
    EXPECT_THAT(countsOf("local_purge"), ElementsAre(2, 0, 2));
    EXPECT_FALSE(confirmations.pendingConfirmation());
    takeSample(85.9);
    EXPECT_TRUE(approveAndRun("local_purge").isAccepted());
    EXPECT_TRUE(confirmations.pendingConfirmation());
    EXPECT_THAT(countsOf("local_purge"), ElementsAre(3, 1, 2));
}

TEST_F(SuggestionsTest, EachPressOfApproveCounts) {
    publish({"select_top"});
    EXPECT_EQ(suggestions().approveSuggestion(at(0)),
              Outcome::done("Approved AI action: Do select_top."));
    suggestions().approveSuggestion(at(0));
    EXPECT_THAT(countsOf("select_top"), ElementsAre(2, 0, 0));
    EXPECT_THAT(suggestions().approvedAIActionIDs(), ElementsAre(at(0).id));
    EXPECT_THAT(events(), ElementsAre("Action: Approved AI action: Do select_top.",
                                      "Action: Approved AI action: Do select_top."));
}

TEST_F(SuggestionsTest, ApproveAllReplacesTheApprovals) {
    EXPECT_EQ(suggestions().approveAllSuggestions(),
              Outcome::done("Approved 0 AI suggested actions."));
    publish({"select_top", "tip", "select_top"});
    suggestions().approveSuggestion(suggestionOf("old"));
    EXPECT_EQ(suggestions().approveAllSuggestions(),
              Outcome::done("Approved 3 AI suggested actions."));
    EXPECT_THAT(suggestions().approvedAIActionIDs(),
                UnorderedElementsAre(at(0).id, at(1).id, at(2).id));
    EXPECT_THAT(countsOf("select_top"), ElementsAre(2, 0, 0));
    EXPECT_THAT(countsOf("tip"), ElementsAre(1, 0, 0));
    publish({"tip"});
    EXPECT_EQ(suggestions().approveAllSuggestions(),
              Outcome::done("Approved 1 AI suggested action."));
}

TEST_F(SuggestionsTest, RunApprovedRunsWhatCanRunAndCanBeRepeated) {
    takeSample();
    const Outcome none = Outcome::refused("No approved AI actions are ready to run.");
    EXPECT_EQ(suggestions().runApprovedSuggestions(), none);
    publish({"copy_report", "tip", "select_top"});
    EXPECT_EQ(suggestions().runApprovedSuggestions(), none);
    suggestions().approveSuggestion(at(1));
    EXPECT_EQ(suggestions().runApprovedSuggestions(), none) << "only a type that cannot run";
    EXPECT_THAT(countsOf("tip"), ElementsAre(1, 0, 0));
    suggestions().approveSuggestion(at(2));
    suggestions().approveSuggestion(at(0));
    log.clearActivityLog();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(suggestions().runApprovedSuggestions(), Outcome::done());
    }
    EXPECT_THAT(events(), ElementsAre("Action: Copied a performance report to the clipboard.",
                                      "Action: Selected the heaviest process inside editor.",
                                      "Action: Copied a performance report to the clipboard.",
                                      "Action: Selected the heaviest process inside editor."));
    EXPECT_THAT(countsOf("copy_report"), ElementsAre(1, 2, 0));
}

TEST_F(SuggestionsTest, ANewSuggestionNeedsAnApprovalOfItsOwn) {
    takeSample();
    EXPECT_TRUE(approveAndRun("select_top").isAccepted());
    const AIActionSuggestion old = at(0);
    publish({"select_top"});
    EXPECT_EQ(suggestions().runSuggestion(at(0)).kind, Outcome::Kind::refused);
    EXPECT_EQ(suggestions().runSuggestion(old).kind, Outcome::Kind::refused);
}

TEST_F(SuggestionsTest, TheTrustSurvivesARestartUntilItIsReset) {
    approveAndRun("tip");
    begin();
    EXPECT_THAT(countsOf("tip"), ElementsAre(1, 0, 1));
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::trusted);
    trust().recordTrustEvent("disk_cleanup", TrustEvent::run);
    EXPECT_EQ(trust().resetTrustHistory(), Outcome::done("Reset AI Advisor trust history."));
    EXPECT_EQ(log.lastAction(), "Reset AI Advisor trust history.");
    EXPECT_THAT(trust().aiTrustRecords(), IsEmpty());
    EXPECT_EQ(settings.values().aiAutonomyMode, AIAutonomyMode::trusted);
    begin();
    EXPECT_THAT(trust().aiTrustRecords(), IsEmpty());
}

TEST_F(SuggestionsTest, AStoredTableThatDoesNotDecodeCountsAsNone) {
    store.values.write("Tallowcrest.aiTrustRecords",
                       JSONData{R"({"select_top":{"runCount":"x"}})"});
    begin();
    EXPECT_THAT(trust().aiTrustRecords(), IsEmpty());
    approveAndRun("tip");
    begin();
    EXPECT_THAT(trust().aiTrustRecords(), SizeIs(1));
}

TEST_F(SuggestionsTest, TheGreatestCountStaysWhatItIs) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    const std::map<std::string, AITrustRecord> records{{"tip", {"tip", most, most, most, {}}}};
    store.values.write("Tallowcrest.aiTrustRecords", JSONData{*record_json::encode(records)});
    begin();
    approveAndRun("tip");
    EXPECT_THAT(countsOf("tip"), ElementsAre(most, most, most));
}

TEST_F(SuggestionsTest, TheSafeSwitchRunsTheFirstOfItsThreeTypes) {
    takeSample();
    publish({"copy_report", "tip", "select_top", "scan_remote"});
    suggestions().runFirstSafeSuggestion();
    EXPECT_THAT(events(), ElementsAre("Action: Selected the heaviest process inside editor."));
    EXPECT_THAT(suggestions().approvedAIActionIDs(), ElementsAre(at(2).id));
    EXPECT_THAT(countsOf("select_top"), ElementsAre(0, 1, 0)) << "no event for the approval";
    EXPECT_THAT(countsOf("scan_remote"), IsEmpty());
}

TEST_F(SuggestionsTest, TheSafeSwitchSaysWhenThereIsNothingForIt) {
    publish({"copy_report", "export_diagnostics", "tip"});
    suggestions().runFirstSafeSuggestion();
    EXPECT_THAT(events(),
                ElementsAre("AI: AI safe actions enabled, but no executable safe action was "
                            "suggested."));
    EXPECT_THAT(suggestions().approvedAIActionIDs(), IsEmpty());
}

TEST_F(SuggestionsTest, NoSuggestionTouchesTheTrustOfTheDiskCleanup) {
    const std::string type(diskCleanupAction);
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(approveAndRun(type),
                  Outcome::refused("AI action 'disk_cleanup' is informational only."));
        suggestions().approveAllSuggestions();
        suggestions().runFirstSafeSuggestion();
        suggestions().applyAdvisorAutonomy();
    }
    EXPECT_THAT(trust().aiTrustRecords(), IsEmpty());
    // Nor does a refusal take away what clean-ups have earned.
    for (int i = 0; i < 4; ++i) {
        trust().recordTrustEvent(type, TrustEvent::run);
    }
    approveAndRun(type);
    EXPECT_THAT(countsOf(type), ElementsAre(0, 4, 0));
    EXPECT_TRUE(diskCleanupTrustEstablished(4, trustPercent(trust().aiTrustRecords().at(type))));
}

TEST_F(SuggestionsTest, AStoredRecordCanBeOdd) {
    const std::map<std::string, AITrustRecord> records{
        {"select_top", {"other", 90, 90, 0, {}}},  // not the type that it is stored under
        {"scan_remote", {"scan_remote", -5, -3, -100, {}}},
        {"copy_report", {"copy_report", 100, -1, 0, {}}}};
    store.values.write("Tallowcrest.aiTrustRecords", JSONData{*record_json::encode(records)});
    begin();
    takeSample();
    settings.set(&Settings::aiAutonomyMode, AIAutonomyMode::trusted);
    publish({"select_top", "scan_remote", "copy_report", "other"});
    suggestions().applyAdvisorAutonomy();
    EXPECT_THAT(suggestions().approvedAIActionIDs(), ElementsAre(at(0).id))
        << "the key counts, and a score without runs is no experience";
    EXPECT_EQ(trustPercent(trust().aiTrustRecords().at("scan_remote")), 100);
    approveAndRun("select_top");
    EXPECT_THAT(countsOf("select_top"), ElementsAre(91, 91, 0)) << "and now it has its own type";
    approveAndRun("scan_remote");
    EXPECT_THAT(countsOf("scan_remote"), ElementsAre(-4, -2, -100));
}

}  // namespace
}  // namespace tallowcrest
