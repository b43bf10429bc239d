#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "monitor/recommendations.h"
#include "tests/monitor/recommendation_cards.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

std::vector<HistoryPoint> timeline(std::size_t count, double cpu, double memory) {
    return std::vector<HistoryPoint>(count, HistoryPoint{UUID(), Date(), cpu, memory});
}

const std::vector<AppImpact> groups{{"Editor", 3, 80.0, 900.0, 42, 0},
                                    {"Browser", 3, 8.0, 90.0, 43, 0}};

std::vector<Recommendation> cardsNamed(const std::vector<std::string>& titles) {
    std::vector<Recommendation> cards;
    for (const std::string& title : titles) {
        cards.push_back({UUID::random(), title, "Why.", Severity::info, std::nullopt});
    }
    return cards;
}

const Card sustainedCPU{"CPU has stayed high for about a minute",
                        "This looks sustained rather than a brief spike. Check App Impact first, "
                        "then quit or restart the top app if the Mac feels sluggish.",
                        Severity::caution, 42};
const Card sustainedMemory{"Memory pressure has stayed elevated",
                           "Sustained memory pressure usually points to a browser, Docker, or a "
                           "development process holding onto RAM.",
                           Severity::caution, 42};

Card urgent(Card card) {
    card.severity = Severity::urgent;
    return card;
}

struct Minute {
    double cpu;
    double memory;
    std::vector<Card> cards;
};

TEST(AddSustainedRecommendations, ComparesTheMeansWithTheLimits) {
    for (const Minute& minute :
         {Minute{0, 0, {}}, Minute{69.9, 77.9, {}}, Minute{70, 0, {sustainedCPU}},
          Minute{84.9, 0, {sustainedCPU}}, Minute{85, 0, {urgent(sustainedCPU)}},
          Minute{100, 0, {urgent(sustainedCPU)}}, Minute{0, 78, {sustainedMemory}},
          Minute{0, 87.9, {sustainedMemory}}, Minute{0, 88, {urgent(sustainedMemory)}},
          Minute{70, 78, {sustainedMemory, sustainedCPU}},
          Minute{90, 90, {urgent(sustainedMemory), urgent(sustainedCPU)}}}) {
        std::vector<Card> cards;
        for (const Recommendation& card :
             addSustainedRecommendations({}, timeline(10, minute.cpu, minute.memory), groups)) {
            cards.push_back(contentOf(card));
        }
        EXPECT_THAT(cards, ElementsAreArray(minute.cards)) << minute.cpu << ", " << minute.memory;
    }
}

TEST(AddSustainedRecommendations, FewerThanTenPointsChangeNothing) {
    const auto cards = cardsNamed({"a", "a", "b", "c", "d", "e", "f"});
    for (const std::size_t count : {0U, 1U, 9U}) {
        EXPECT_EQ(addSustainedRecommendations(cards, timeline(count, 100, 100), groups), cards);
    }
    EXPECT_THAT(titlesOf(addSustainedRecommendations(cards, timeline(10, 100, 100), groups)),
                ElementsAre(sustainedMemory.title, sustainedCPU.title, "a", "b", "c"));
}

TEST(AddSustainedRecommendations, UsesTheLastFifteenPoints) {
    auto points = timeline(165, 100, 100);
    const auto calm = timeline(15, 69.9, 77.9);
    points.insert(points.end(), calm.begin(), calm.end());
    EXPECT_THAT(addSustainedRecommendations({}, points, groups), IsEmpty());
    points.pop_back();
    EXPECT_THAT(titlesOf(addSustainedRecommendations({}, points, groups)),
                ElementsAre(sustainedMemory.title, sustainedCPU.title));
}

TEST(AddSustainedRecommendations, UsesAllPointsWhenThereAreFewerThanFifteen) {
    auto points = timeline(6, 100, 90);
    const auto calm = timeline(6, 40, 66);
    points.insert(points.end(), calm.begin(), calm.end());
    EXPECT_THAT(titlesOf(addSustainedRecommendations({}, points, groups)),
                ElementsAre(sustainedMemory.title, sustainedCPU.title));
}

TEST(AddSustainedRecommendations, RelateToTheTopProcessOfTheFirstGroup) {
    auto withoutTop = groups;
    withoutTop.front().topPID.reset();
    for (const auto& [impacts, pid] :
         {std::pair{groups, std::optional<std::int64_t>(42)}, std::pair{withoutTop, noPID},
          std::pair{std::vector<AppImpact>(), noPID}}) {
        const auto cards = addSustainedRecommendations({}, timeline(10, 90, 90), impacts);
        ASSERT_EQ(cards.size(), 2U);
        EXPECT_EQ(cards[0].relatedPID, pid);
        EXPECT_EQ(cards[1].relatedPID, pid);
    }
}

TEST(AddSustainedRecommendations, AreFirstInAListOfAtMostFive) {
    const auto first = cardsNamed({"1", "2", "3", "4", "5"});
    EXPECT_THAT(titlesOf(addSustainedRecommendations(first, timeline(15, 90, 90), groups)),
                ElementsAre(sustainedMemory.title, sustainedCPU.title, "1", "2", "3"));
    EXPECT_THAT(titlesOf(addSustainedRecommendations(first, timeline(15, 90, 0), groups)),
                ElementsAre(sustainedCPU.title, "1", "2", "3", "4"));
    EXPECT_EQ(addSustainedRecommendations(first, timeline(15, 0, 0), groups), first);
}

TEST(AddSustainedRecommendations, TheHealthyCardCanFollow) {
    const auto healthy = buildRecommendations({}, 4.0, 0.0, 0.0, PlainLocale());
    EXPECT_THAT(titlesOf(addSustainedRecommendations(healthy, timeline(15, 90, 0), groups)),
                ElementsAre(sustainedCPU.title, "This Mac looks healthy"));
}

TEST(AddSustainedRecommendations, TheFirstOfEqualTitlesIsKept) {
    auto cards = cardsNamed({"a", sustainedCPU.title, "b", "a", "c", "d", "e", "f"});
    const auto kept = addSustainedRecommendations(cards, timeline(10, 0, 0), groups);
    EXPECT_THAT(titlesOf(kept), ElementsAre("a", sustainedCPU.title, "b", "c", "d"));
    EXPECT_EQ(kept[0].id, cards[0].id);

    const auto topped = addSustainedRecommendations(cards, timeline(10, 90, 0), groups);
    EXPECT_THAT(titlesOf(topped), ElementsAre(sustainedCPU.title, "a", "b", "c", "d"));
    EXPECT_EQ(contentOf(topped[0]), urgent(sustainedCPU));
}

TEST(AddSustainedRecommendations, ANaNMeanAddsNoCard) {
    auto points = timeline(15, 90, 90);
    points[3].cpu = nan;
    EXPECT_THAT(titlesOf(addSustainedRecommendations({}, points, groups)),
                ElementsAre(sustainedMemory.title));
}

TEST(AddSustainedRecommendations, EveryCallGivesNewIdentifiers) {
    const auto points = timeline(10, 90, 90);
    const auto first = addSustainedRecommendations({}, points, groups);
    const auto second = addSustainedRecommendations({}, points, groups);
    ASSERT_EQ(first.size(), 2U);
    EXPECT_NE(first[0].id, first[1].id);
    EXPECT_NE(first[0].id, second[0].id);
    EXPECT_NE(first[1].id, second[1].id);
}

}  // namespace
}  // namespace tallowcrest
