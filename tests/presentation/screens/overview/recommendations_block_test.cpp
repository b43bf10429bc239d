#include "presentation/screens/overview/recommendations_block.h"

#include "presentation/screens/overview/kept_room.h"
#include "presentation/screens/overview/recommendation_row.h"
#include "tests/presentation/screens/overview/blocks_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(OverviewBlocksTest, RecommendationsWaitForTheFirstSample) {
    show();
    EXPECT_THAT(
        texts("overview.recommendations"),
        ElementsAre("Sampling this Mac...", "The first recommendation follows the first sample."));
}

TEST_F(OverviewBlocksTest, WithoutARecommendationTheBlockSaysWhatToDo) {
    showWithSample();
    EXPECT_THAT(texts("overview.recommendations"),
                ElementsAre("No recommendation for this sample", "Refresh takes a new one."));
}

TEST_F(OverviewBlocksTest, AHealthyMachineHasItsWordAndNoButton) {
    recommendations = {recommend("This Mac looks healthy", Severity::info)};
    showWithSample();
    EXPECT_THAT(texts("overview.recommendations"),
                ElementsAre("This Mac looks healthy", "Info", "This Mac looks healthy in detail"));
    EXPECT_EQ(visible("overview.recommendation-1.review"), nullptr);
}

TEST_F(OverviewBlocksTest, TheMostSevereRecommendationLeads) {
    recommendations = {recommend("Busy", Severity::caution), recommend("Full", Severity::urgent),
                       recommend("Odd", Severity::caution)};
    showWithSample();
    const std::vector<std::string> shown = texts("overview.recommendations");
    EXPECT_EQ(shown.at(0), "Full");
    EXPECT_EQ(shown.at(1), "Urgent");
    EXPECT_THAT(shown, AllOf(Contains("Busy"), Contains("Odd"), Contains("Odd in detail")));
}

TEST_F(OverviewBlocksTest, ReviewSelectsTheProcessAndGoesToProcesses) {
    recommendations = {recommend("Memory", Severity::urgent, 700),
                       recommend("CPU", Severity::caution, 800)};
    showWithSample();
    click("overview.recommendation-2.review");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(route(), AppRoute::load);
    goTo(AppRoute::overview);
    click("overview.recommendation-1.review");
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_EQ(route(), AppRoute::load);
}

TEST_F(OverviewBlocksTest, AProcessThatIsGoneCannotBeReviewed) {
    recommendations = {recommend("Memory", Severity::urgent, 700)};
    showWithSample();
    ASSERT_NE(visible("overview.recommendation-1.review"), nullptr);
    std::erase_if(machine.metrics->processes, [](const auto& row) { return row.pid == 700; });
    tick();
    EXPECT_EQ(visible("overview.recommendation-1.review"), nullptr);
}

TEST_F(OverviewBlocksTest, RecommendationsChangePlacesInTheirRows) {
    recommendations = {recommend("A", Severity::urgent), recommend("B", Severity::caution),
                       recommend("C", Severity::caution)};
    showWithSample();
    const int before = heightOf("overview.recommendations");
    const auto rows = visible("overview.recommendations")->findChildren<RecommendationRow*>();
    std::reverse(recommendations.begin(), recommendations.end());
    recommendations.front().severity = Severity::urgent;
    tick();
    EXPECT_EQ(texts("overview.recommendations").front(), "C");
    EXPECT_EQ(heightOf("overview.recommendations"), before);
    EXPECT_EQ(visible("overview.recommendations")->findChildren<RecommendationRow*>(), rows);
}

TEST_F(OverviewBlocksTest, RoomIsMadeAtOnceAndGivenBackAfterAMinuteOfCalm) {
    recommendations = {recommend("A", Severity::info)};
    showWithSample();
    const int calm = heightOf("overview.recommendations");
    recommendations = {recommend("A", Severity::urgent), recommend("B", Severity::caution),
                       recommend("C", Severity::caution)};
    tick();
    const int troubled = heightOf("overview.recommendations");
    EXPECT_GT(troubled, calm);
    recommendations = {recommend("A", Severity::info)};
    tick();
    EXPECT_EQ(heightOf("overview.recommendations"), troubled);
    EXPECT_THAT(texts("overview.recommendations"), Not(Contains("B")));
    for (int samples = 1; samples < KeptRoom::patience; ++samples) {
        // What is no sample does not count.
        machine.monitor().log().setLastAction("Something");
        machine.monitor().log().setLastAction("Something else");
        settle();
        EXPECT_EQ(heightOf("overview.recommendations"), troubled);
        tick();
    }
    EXPECT_EQ(heightOf("overview.recommendations"), calm);
}

TEST_F(OverviewBlocksTest, MoreThanFiveAreLeftOut) {
    for (const char* title : {"A", "B", "C", "D", "E", "F"}) {
        recommendations.push_back(recommend(title, Severity::caution));
    }
    showWithSample();
    EXPECT_THAT(texts("overview.recommendations"), AllOf(Contains("E"), Not(Contains("F"))));
}

TEST_F(OverviewBlocksTest, ClosedRecommendationsStillTellWhatMattersMost) {
    recommendations = {recommend("Busy", Severity::caution), recommend("Full", Severity::urgent)};
    showWithSample();
    const auto* header = visible<SectionHeader>("section.recommendations");
    EXPECT_EQ(header->note(), QString());
    click("section.recommendations");
    EXPECT_EQ(header->note(), u"Urgent · Full · 1 more"_s);
    EXPECT_TRUE(header->accessibleDescription().startsWith(header->note()));
    recommendations = {recommend("Fine", Severity::info)};
    tick();
    EXPECT_EQ(header->note(), u"Info · Fine"_s);
}

TEST_F(OverviewBlocksTest, TheLeadTakesTheLinesItNeedsAndKeepsThemForAMinute) {
    const auto leadHeight = [this] {
        return visible("overview.recommendations")->findChild<RecommendationRow*>()->height();
    };
    const std::string longDetail(150, 'a');
    recommendations = {recommend("A", Severity::info)};
    window().resize(1080, 700);
    showWithSample();
    tick();
    const int oneLine = leadHeight();
    recommendations.front().detail = "Many words. " + longDetail + " And more.";
    tick();
    const int more = leadHeight();
    EXPECT_GT(more, oneLine);
    recommendations.front().detail = "Few words.";
    for (int samples = 0; samples < KeptRoom::patience; ++samples) {
        tick();
        EXPECT_EQ(leadHeight(), more) << samples;
    }
    tick();
    EXPECT_EQ(leadHeight(), oneLine);
}

TEST_F(OverviewBlocksTest, RowsHaveRoomBetweenTheirButtonsAtEveryWidth) {
    recommendations = {recommend("A", Severity::caution, 700),
                       recommend("B", Severity::caution, 800),
                       recommend("C", Severity::caution, 700)};
    showWithSample();
    for (const int width : {640, 900, 1080, 1600, 900}) {
        window().resize(width, 700);
        settle();
        const QWidget* block = visible("overview.recommendations");
        const QWidget* second = visible("overview.recommendation-2.review");
        const QWidget* third = visible("overview.recommendation-3.review");
        const int below = second->mapTo(block, QPoint(0, second->height())).y();
        EXPECT_GE(third->mapTo(block, QPoint()).y() - below, spacing::unit) << width;
        EXPECT_LE(third->mapTo(block, QPoint(0, third->height())).y(),
                  block->height() - spacing::cardPadding)
            << width;
    }
}

}  // namespace
}  // namespace tallowcrest
