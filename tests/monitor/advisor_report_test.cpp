// The report speaks of the advisor as it is now.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "advisor/advisor.h"
#include "monitor/system_monitor.h"
#include "reports/reports.h"
#include "tests/support/fake_advisor_ports.h"
#include "tests/support/fake_machine.h"

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

class AdvisorReport : public ::testing::Test {
protected:
    AdvisorReport() {
        ports.secrets->secret = "sk-key";
        machine.advisor = ports.ports();
        machine.store.write("Tallowcrest.aiRequirePreview", false);
        machine.addProcess(700, "/usr/bin/photo-indexer", 40.0, 900.0);
        machine.monitor();
        machine.tick();
    }

    Advisor& advisor() { return machine.monitor().advisor(); }
    std::string report() { return machine.monitor().reports().diagnosticsReport(false).value(); }
    void analyze() {
        advisor().provider.requestAIAnalysis();
        finishWork();
    }
    void finishWork() {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
        }
    }

    FakeAdvisorPorts ports;
    FakeMachine machine;
};

TEST_F(AdvisorReport, TellsTheKeyAndWhatAnAnalysisSaid) {
    EXPECT_THAT(report(), HasSubstr("OpenAI key saved: Yes"));
    EXPECT_THAT(report(), HasSubstr("Last AI insight: Enhanced AI recommendations are ready."));
    EXPECT_THAT(report(), HasSubstr("No trust history."));
    ports.http->willSay(R"({"summary": "The indexer is busy.", "actions": [
        {"type": "select_top", "title": "Look at it", "detail": "Why", "risk": "low"}]})");
    analyze();
    EXPECT_THAT(report(), HasSubstr("Last AI insight: The indexer is busy."));
    EXPECT_THAT(report(), HasSubstr("Proposed AI actions: select_top: Look at it"));
    EXPECT_THAT(report(), Not(HasSubstr("sk-key")));
}

TEST_F(AdvisorReport, TellsWhatWasApprovedAndRun) {
    ports.http->willSay(R"({"summary": "Busy.", "actions": [
        {"type": "select_top", "title": "Look at it", "detail": "Why", "risk": "low"}]})");
    analyze();
    ASSERT_THAT(advisor().suggestions.aiActions(), SizeIs(1));
    const AIActionSuggestion suggestion = advisor().suggestions.aiActions().front();
    advisor().suggestions.approveSuggestion(suggestion);
    advisor().suggestions.runSuggestion(suggestion);
    EXPECT_THAT(report(), Not(HasSubstr("No trust history.")));
    EXPECT_THAT(report(), HasSubstr("select_top"));
}

TEST_F(AdvisorReport, FollowsARemovedKeyAndAnAnalysisOfThisMachine) {
    advisor().provider.removeOpenAIKey();
    finishWork();
    EXPECT_THAT(report(), HasSubstr("OpenAI key saved: No"));
    analyze();
    EXPECT_THAT(report(), HasSubstr("Last AI insight: On-device analysis: Memory pressure"));
    EXPECT_THAT(report(), HasSubstr("Proposed AI actions: \n"));
    EXPECT_TRUE(ports.http->sent.empty());
}

}  // namespace
}  // namespace tallowcrest
