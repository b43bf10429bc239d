#include <QLayout>
#include <QPushButton>

#include "presentation/bar_list.h"
#include "presentation/overview/kept_room.h"
#include "presentation/overview/overview_block.h"
#include "presentation/overview/recommendation_row.h"
#include "presentation/summary_card.h"
#include "tests/presentation/window_fixture.h"

namespace tallowcrest {
namespace {

using Severity = Recommendation::Severity;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class OverviewBlocksTest : public WindowFixture {
protected:
    OverviewBlocksTest() {
        machine.extensions.background.buildRecommendations =
            [this](const auto&, double, double, double) { return recommendations; };
        machine.extensions.main.buildSessionInsights = [this](const SystemSnapshot&) {
            return insights;
        };
    }

    /// Every text that shows within the block of that identifier, in reading order.
    std::vector<std::string> texts(const char* identifier) {
        QWidget* block = visible(identifier);
        std::vector<std::pair<std::pair<int, int>, std::string>> found;
        for (const ElidedLabel* label : block->findChildren<ElidedLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty()) {
                const QPoint at = label->mapTo(block, QPoint());
                found.push_back({{at.y(), at.x()}, label->text().toStdString()});
            }
        }
        std::sort(found.begin(), found.end());
        std::vector<std::string> result;
        for (auto& [place, text] : found) {
            result.push_back(std::move(text));
        }
        return result;
    }

    /// The cards of a block as "title: value, detail".
    std::vector<std::string> cards(const char* identifier) {
        std::vector<std::string> found;
        for (const SummaryCard* card : visible(identifier)->findChildren<SummaryCard*>()) {
            if (card->isVisible()) {
                found.push_back(
                    (card->accessibleName() + QStringLiteral(": ") + card->accessibleValue())
                        .toStdString());
            }
        }
        return found;
    }

    static Recommendation recommend(const char* title, Severity severity,
                                    std::optional<std::int64_t> pid = std::nullopt) {
        return {UUID::random(), title, std::string(title) + " in detail", severity, pid};
    }

    int heightOf(const char* identifier) { return visible(identifier)->height(); }

    std::vector<Recommendation> recommendations;
    std::vector<SessionInsight> insights;
};

// Recommendations --------------------------------------------------------------------------------

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
    EXPECT_EQ(header->note(), QStringLiteral("Urgent · Full · 1 more"));
    EXPECT_TRUE(header->accessibleDescription().startsWith(header->note()));
    recommendations = {recommend("Fine", Severity::info)};
    tick();
    EXPECT_EQ(header->note(), QStringLiteral("Info · Fine"));
}

// Disk -------------------------------------------------------------------------------------------

TEST_F(OverviewBlocksTest, DiskAutopilotShowsTheHomeVolumeAndItsStatus) {
    machine.metrics->disk = {200.0, 50.0};
    show();
    const auto* space = visible("overview.disk-autopilot")->findChild<BarList*>();
    EXPECT_EQ(space->accessibleValue(), QStringLiteral("Sampling this Mac..."));
    machine.finishSamples();
    settle();
    EXPECT_EQ(
        space->rows(),
        (std::vector<BarRow>{{QStringLiteral("50.0 GB free"), QStringLiteral("75% used"), 0.75}}));
    EXPECT_EQ(textOf("overview.disk-autopilot-status"), QStringLiteral("Disk Autopilot is off."));
    EXPECT_THAT(visible("overview.disk-autopilot")->findChildren<QPushButton*>(), IsEmpty());
    machine.metrics->disk = {};
    tick();
    EXPECT_EQ(space->accessibleValue(),
              QStringLiteral("The size of the home volume could not be read."));
}

// The top offender -------------------------------------------------------------------------------

TEST_F(OverviewBlocksTest, TheTopOffenderInItsThreeStates) {
    show();
    EXPECT_THAT(texts("overview.top-offender"), ElementsAre("No top offender yet"));
    EXPECT_EQ(visible("overview.review-cleanup-options"), nullptr);
    const int height = heightOf("overview.top-offender");
    machine.finishSamples();
    settle();
    EXPECT_THAT(texts("overview.top-offender"),
                ElementsAre("System Looks Stable",
                            "CPU and memory pressure are below your warning threshold. Keep "
                            "monitoring or run an on-device second opinion."));
    EXPECT_EQ(visible("overview.review-cleanup-options"), nullptr);
    EXPECT_EQ(heightOf("overview.top-offender"), height);
    machine.metrics->memory.pressure = 82.0;
    tick();
    EXPECT_THAT(texts("overview.top-offender"),
                ElementsAre("photo-indexer is the most useful place to start. Review the Optimize "
                            "workspace before quitting or purging anything."));
    EXPECT_EQ(heightOf("overview.top-offender"), height);
    click("overview.review-cleanup-options");
    EXPECT_EQ(route(), AppRoute::optimize);
}

// Activity ---------------------------------------------------------------------------------------

TEST_F(OverviewBlocksTest, RecentActivityListsTheNewestFive) {
    showWithSample();
    EXPECT_THAT(texts("overview.recent-activity"),
                ElementsAre("No actions or warnings have been logged yet."));
    const int height = heightOf("overview.recent-activity");
    for (const char* detail : {"one", "two", "three", "four", "five", "six"}) {
        machine.monitor().log().recordEvent("Action", detail);
    }
    machine.monitor().log().recordEvent("Warning", "seven");
    settle();
    const std::vector<std::string> shown = texts("overview.recent-activity");
    EXPECT_THAT(shown, AllOf(Contains("seven"), Contains("Warning"), Contains("three")));
    EXPECT_THAT(shown, AllOf(Not(Contains("two")),
                             Not(Contains("No actions or warnings have been logged yet."))));
    EXPECT_EQ(heightOf("overview.recent-activity"), height);
    machine.monitor().log().clearActivityLog();
    settle();
    EXPECT_THAT(texts("overview.recent-activity"),
                ElementsAre("No actions or warnings have been logged yet."));
}

TEST_F(OverviewBlocksTest, OpenHistoryGoesThere) {
    showWithSample();
    click("overview.open-history");
    EXPECT_EQ(route(), AppRoute::history);
}

// Figures of the session -------------------------------------------------------------------------

TEST_F(OverviewBlocksTest, TheSummaryCountsTheSession) {
    showWithSample();
    machine.monitor().log().recordEvent("Warning", "Load is high");
    machine.monitor().log().recordEvent("Action", "Something");
    insights = {{UUID::random(), "Recurring Top App", "editor", "Led"}};
    tick();
    EXPECT_THAT(
        cards("overview.session-summary"),
        ElementsAre("Events: 1 warnings, 1 logged actions. Use Export for a full diagnostics file.",
                    "Recurring Top App: editor, Most visible app group in this Tallowcrest "
                    "session.",
                    "Remote Repeater: None yet, Most repeated top remote app group across SSH "
                    "scans.",
                    "Never Quit: 0 apps, No custom app groups are protected yet."));
}

TEST_F(OverviewBlocksTest, InsightsShowAsTheyAre) {
    show();
    EXPECT_THAT(cards("overview.session-insights"),
                ElementsAre("Session: Starting, Tallowcrest is collecting enough samples to "
                            "identify patterns."));
    insights = {
        {UUID::random(), "Peak CPU", "97%", "Average 40% across this session."},
        {UUID::random(), "Peak Memory", "80%", "Average 50% pressure across this session."}};
    machine.finishSamples();
    settle();
    EXPECT_THAT(cards("overview.session-insights"),
                ElementsAre("Peak CPU: 97%, Average 40% across this session.",
                            "Peak Memory: 80%, Average 50% pressure across this session."));
    insights.pop_back();
    tick();
    EXPECT_THAT(cards("overview.session-insights"),
                ElementsAre("Peak CPU: 97%, Average 40% across this session."));
}

TEST_F(OverviewBlocksTest, TheFirstPaintingAlreadyHasEveryCardInItsRoom) {
    insights = {{UUID::random(), "Peak CPU", "97%", "Average"},
                {UUID::random(), "Peak Memory", "80%", "Average"},
                {UUID::random(), "Recurring Top App", "editor", "Led"},
                {UUID::random(), "Remote Watch", "server", "Highest"}};
    window().resize(900, 600);
    show();
    machine.workQueue.run();
    // The turn of the main thread in which the sample lands, and nothing of Qt's loop after it.
    machine.mainQueue.drain();
    for (const SummaryCard* card :
         visible("overview.session-insights")->findChildren<SummaryCard*>()) {
        if (card->isVisible()) {
            EXPECT_GE(card->height(), card->layout()->totalHeightForWidth(card->width()));
        }
    }
}

}  // namespace
}  // namespace tallowcrest
