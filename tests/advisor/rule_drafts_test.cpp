#include "advisor/rule_drafts.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/advisor_machine.h"
#include "tests/support/each_of.h"

namespace tallowcrest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

class RuleDraftsTest : public ::testing::Test, protected AdvisorMachine {
protected:
    void generate(const std::string& type = "select_top") {
        drafts().generateRuleDrafts(
            std::vector<AIActionSuggestion>{{UUID::random(), type, "Look", "why", "low"}});
    }
    RuleDrafts& drafts() { return advisor->drafts; }
};

TEST_F(RuleDraftsTest, AreStoredAndSurviveARestart) {
    generate();
    ASSERT_THAT(drafts().aiRuleDrafts(), SizeIs(1));
    const AIRuleDraft made = drafts().aiRuleDrafts().front();
    EXPECT_FALSE(made.enabled);
    EXPECT_EQ(drafts().toggleRuleDraft(made),
              Outcome::done("Enabled AI rule draft: AI pattern: Look."));
    EXPECT_THAT(events(), ElementsAre("Action: Enabled AI rule draft: AI pattern: Look."));
    begin();
    ASSERT_THAT(drafts().aiRuleDrafts(), SizeIs(1));
    EXPECT_EQ(drafts().aiRuleDrafts().front().id, made.id);
    EXPECT_TRUE(drafts().aiRuleDrafts().front().enabled);
    EXPECT_EQ(drafts().toggleRuleDraft(made),
              Outcome::done("Disabled AI rule draft: AI pattern: Look."));
    EXPECT_FALSE(drafts().aiRuleDrafts().front().enabled);
    generate();
    EXPECT_THAT(drafts().aiRuleDrafts(), SizeIs(1)) << "the same title again";
}

TEST_F(RuleDraftsTest, NothingIsSavedWithoutACandidate) {
    takeSample();
    store.written.clear();
    generate("copy_report");
    EXPECT_THAT(drafts().aiRuleDrafts(), IsEmpty());
    EXPECT_THAT(store.written, Not(Contains("Tallowcrest.aiRuleDrafts")));
}

TEST_F(RuleDraftsTest, ReadTheStateOfTheMachine) {
    takeSample(90.0);
    RemoteHealth health;
    health.hostName = "studio";
    remote.scan.finishRemoteScan({health});
    generate("tip");
    EXPECT_THAT(
        eachOf(drafts().aiRuleDrafts(), &AIRuleDraft::title),
        ElementsAre("Warn on sustained memory pressure", "Scan remotes during local pressure"));
}

TEST_F(RuleDraftsTest, AnUnknownDraftIsIgnored) {
    generate();
    EXPECT_EQ(drafts().toggleRuleDraft({}), Outcome::ignored());
    EXPECT_FALSE(drafts().aiRuleDrafts().front().enabled);
    EXPECT_THAT(events(), IsEmpty());
}

TEST_F(RuleDraftsTest, AListThatDoesNotDecodeCountsAsNone) {
    store.values.write("Tallowcrest.aiRuleDrafts", JSONData{"[{\"id\":1}]"});
    begin();
    EXPECT_THAT(drafts().aiRuleDrafts(), IsEmpty());
    generate();
    begin();
    EXPECT_THAT(drafts().aiRuleDrafts(), SizeIs(1));
}

}  // namespace
}  // namespace tallowcrest
