#include "advisor/draft_rules.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/advisor/app_group.h"
#include "tests/support/each_of.h"

namespace tallowcrest::draft_rules {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

AIActionSuggestion suggestion(std::string type, std::string title = "T") {
    return {UUID::random(), std::move(type), std::move(title), "why", "high"};
}

/// "title | trigger | action | risk" of each.
std::vector<std::string> textsOf(const std::vector<AIRuleDraft>& drafts) {
    return eachOf(drafts, [](const AIRuleDraft& each) {
        EXPECT_FALSE(each.enabled);
        EXPECT_NE(each.id, UUID());
        return each.title + " | " + each.trigger + " | " + each.action + " | " + each.risk;
    });
}

std::vector<std::string> titlesOf(const std::vector<AIRuleDraft>& drafts) {
    return eachOf(drafts, &AIRuleDraft::title);
}

class DraftCandidates : public ::testing::Test {
protected:
    std::vector<AIRuleDraft> found() const {
        return candidates({&snapshot, threshold, hasRemoteHealth, suggestions});
    }

    SystemSnapshot snapshot;
    double threshold = 85.9;
    bool hasRemoteHealth = false;
    std::vector<AIActionSuggestion> suggestions;
};

TEST_F(DraftCandidates, FollowFromTheSampleAndTheSuggestions) {
    snapshot.memory.pressure = 85.9;
    snapshot.appImpacts = {appGroup("Browser", 3000.0), appGroup("Editor", 9000.0)};
    hasRemoteHealth = true;
    suggestions = {suggestion("select_top", "Look at Browser"), suggestion("scan_remote", "Scan")};
    EXPECT_THAT(
        textsOf(found()),
        ElementsAre(
            "Warn on sustained memory pressure | Memory pressure stays above 85% for several "
            "samples | Show warning and select the safest top app | low",
            "Watch Browser memory growth | Browser uses more than 2.9 GB again | Warn and open "
            "Optimize with Browser selected | low",
            "Scan remotes during local pressure | This Mac crosses 85% CPU or memory pressure | "
            "Scan online Tailscale Macs for matching load | low",
            "AI pattern: Look at Browser | When future diagnostics resemble this AI analysis | why "
            "| high",
            "AI pattern: Scan | When future diagnostics resemble this AI analysis | why | high"));
}

TEST_F(DraftCandidates, AreNoneWithoutACause) {
    snapshot.memory.pressure = 85.89;
    snapshot.appImpacts = {appGroup("Browser", 2999.9), appGroup("Editor", 9000.0)};
    suggestions = {suggestion("copy_report"), suggestion("local_purge"), suggestion("select_top")};
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(DraftCandidates, OnlyTheFirstTwoSuggestionsCount) {
    suggestions = {suggestion("copy_report", "a"), suggestion("select_top", "b"),
                   suggestion("scan_remote", "c")};
    EXPECT_THAT(titlesOf(found()), ElementsAre("AI pattern: b"));
    suggestions = {suggestion("select_top", "b"), suggestion("select_top", "b")};
    EXPECT_THAT(titlesOf(found()), ElementsAre("AI pattern: b", "AI pattern: b"));
    EXPECT_NE(found()[0].id, found()[1].id);
    suggestions = {suggestion("select_top_now"), suggestion("Scan_Remote")};
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(DraftCandidates, WithoutASampleOnlyTheSuggestionsCount) {
    suggestions = {suggestion("select_top", "b")};
    EXPECT_THAT(titlesOf(candidates({nullptr, 65.0, true, suggestions})),
                ElementsAre("AI pattern: b"));
}

TEST_F(DraftCandidates, AreLinesWhateverTheNameOfAnAppIs) {
    snapshot.appImpacts = {appGroup("a\n\x1B[31mb\u202E", 4096.0)};
    EXPECT_THAT(
        textsOf(found()),
        ElementsAre("Watch a  [31mb  memory growth | a  [31mb  uses more than 4.0 GB again | "
                    "Warn and open Optimize with a  [31mb  selected | low"));
}

std::vector<AIRuleDraft> draftsNamed(const std::vector<std::string>& titles) {
    return eachOf(titles, [](const std::string& title) {
        AIRuleDraft draft;
        draft.id = UUID::random();
        draft.title = title;
        draft.enabled = true;
        return draft;
    });
}

TEST(AppendDrafts, ComparesOnlyWithWhatWasThereBefore) {
    std::vector<AIRuleDraft> drafts = draftsNamed({"a", "b"});
    append(drafts, draftsNamed({"b", "c", "c", "a"}));
    EXPECT_THAT(titlesOf(drafts), ElementsAre("a", "b", "c", "c"));
    append(drafts, draftsNamed({"c"}));
    EXPECT_THAT(drafts, SizeIs(4));
}

TEST(AppendDrafts, TheOldestGoBeyondTwelve) {
    std::vector<AIRuleDraft> drafts =
        draftsNamed({"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"});
    append(drafts, {});
    EXPECT_THAT(drafts, SizeIs(maximumDrafts));
    append(drafts, draftsNamed({"a", "b", "12", "c"}));
    EXPECT_THAT(titlesOf(drafts),
                ElementsAre("4", "5", "6", "7", "8", "9", "10", "11", "12", "a", "b", "c"));
    std::vector<AIRuleDraft> stored(20);
    append(stored, {});
    EXPECT_THAT(stored, SizeIs(maximumDrafts));
}

}  // namespace
}  // namespace tallowcrest::draft_rules
