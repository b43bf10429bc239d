#include <QLayout>
#include <QPushButton>

#include "core/settings_keys.h"
#include "presentation/screens/overview/kept_room.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/section_header.h"
#include "presentation/widgets/summary_card.h"
#include "tests/presentation/screens/overview/blocks_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// Disk -------------------------------------------------------------------------------------------

TEST_F(OverviewBlocksTest, DiskAutopilotShowsTheHomeVolumeAndItsStatus) {
    machine.metrics->disk = {200.0, 50.0};
    show();
    const auto* space = visible("overview.disk-autopilot")->findChild<BarList*>();
    EXPECT_EQ(space->accessibleValue(), u"Sampling this Mac..."_s);
    machine.finishSamples();
    settle();
    EXPECT_EQ(space->rows(), (std::vector<BarRow>{{u"50.0 GB free"_s, u"75% used"_s, 0.75}}));
    EXPECT_EQ(textOf("overview.disk-autopilot-status"), u"Disk Autopilot is off."_s);
    machine.metrics->disk = {};
    tick();
    EXPECT_EQ(space->accessibleValue(), u"The size of the home volume could not be read."_s);
}

TEST_F(OverviewBlocksTest, LowDiskSpaceIsToldByWordIconAndColour) {
    machine.metrics->disk = {200.0, 20.1};
    showWithSample();
    EXPECT_EQ(visible("overview.disk-autopilot-low"), nullptr);
    EXPECT_THAT(
        textOf("overview.disk-autopilot-rule").toStdString(),
        testing::StartsWith("Only regular files older than 30 days inside ~/.cache are eligible."));
    const int height = heightOf("overview.disk-autopilot");
    const auto* space = visible("overview.disk-autopilot")->findChild<BarList*>();
    const auto barColor = [space] {
        const QImage shot = const_cast<BarList*>(space)->grab().toImage();
        return shot.pixelColor(shot.width() / 2, shot.height() / 2);
    };
    EXPECT_EQ(barColor(), CrestTheme::current().secondaryText);
    machine.metrics->disk.freeGB = 20.0;
    tick();
    EXPECT_EQ(textOf("overview.disk-autopilot-low"), u"Low"_s);
    EXPECT_EQ(barColor(), CrestTheme::current().caution);
    EXPECT_EQ(heightOf("overview.disk-autopilot"), height);
    const auto* header = visible<SectionHeader>("section.autoRules");
    EXPECT_EQ(header->note(), QString());
    click("section.autoRules");
    EXPECT_EQ(header->note(), u"Low"_s);
    machine.metrics->disk.freeGB = 100.0;
    tick();
    EXPECT_EQ(header->note(), QString());
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

TEST_F(OverviewBlocksTest, TheTopOffenderCanBeReviewed) {
    showWithSample();
    EXPECT_EQ(visible("overview.review-top-offender"), nullptr) << "nothing offends";
    machine.metrics->memory.pressure = 82.0;
    tick();
    machine.monitor().navigation().setProcessFilter("editor");
    click("overview.review-top-offender");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(route(), AppRoute::load);
    EXPECT_EQ(machine.monitor().navigation().processFilter(), "");
    EXPECT_EQ(lastAction(), "Selected the heaviest process inside photo-indexer.");
}

TEST_F(OverviewBlocksTest, AnOffenderThatWouldBeRefusedOffersNoReview) {
    machine.store.write(settings_keys::protectedAppsKey, SettingsTextList{"photo-indexer"});
    machine.metrics->memory.pressure = 82.0;
    showWithSample();
    EXPECT_NE(visible("overview.review-cleanup-options"), nullptr);
    EXPECT_EQ(visible("overview.review-top-offender"), nullptr);
}

// Activity ---------------------------------------------------------------------------------------

TEST_F(OverviewBlocksTest, RecentActivityListsTheNewestFive) {
    showWithSample();
    EXPECT_THAT(texts("overview.recent-activity"),
                ElementsAre("No actions or warnings have been logged yet."));
    const int empty = heightOf("overview.recent-activity");
    machine.monitor().log().recordEvent("Action", "one");
    settle();
    EXPECT_EQ(heightOf("overview.recent-activity"), empty);
    for (const char* detail : {"two", "three", "four", "five", "six"}) {
        machine.monitor().log().recordEvent("Action", detail);
    }
    machine.monitor().log().recordEvent("Warning", "seven");
    settle();
    const std::vector<std::string> shown = texts("overview.recent-activity");
    EXPECT_THAT(shown, AllOf(Contains("seven"), Contains("Warning"), Contains("three")));
    EXPECT_THAT(shown, AllOf(Not(Contains("two")),
                             Not(Contains("No actions or warnings have been logged yet."))));
    const int full = heightOf("overview.recent-activity");
    EXPECT_GT(full, empty);
    tick();
    machine.monitor().log().clearActivityLog();
    settle();
    EXPECT_THAT(texts("overview.recent-activity"),
                ElementsAre("No actions or warnings have been logged yet."));
    for (int samples = 0; samples < KeptRoom::patience; ++samples) {
        EXPECT_EQ(heightOf("overview.recent-activity"), full) << samples;
        tick();
    }
    EXPECT_EQ(heightOf("overview.recent-activity"), empty);
}

TEST_F(OverviewBlocksTest, TopAppMemoryGrowsWithItsGroupsAndGivesRoomBackLater) {
    window().resize(900, 600);  // one column
    show();
    const int waiting = heightOf("overview.top-app-memory");
    machine.finishSamples();
    settle();
    EXPECT_EQ(heightOf("overview.top-app-memory"), waiting);
    for (std::int64_t pid = 901; pid <= 906; ++pid) {
        machine.addProcess(pid, "/usr/bin/app" + std::to_string(pid), 1.0, 100.0);
    }
    tick();
    const int many = heightOf("overview.top-app-memory");
    EXPECT_GT(many, waiting);
    std::erase_if(machine.metrics->processes, [](const auto& row) { return row.pid > 900; });
    for (int samples = 1; samples < KeptRoom::patience; ++samples) {
        tick();
        EXPECT_EQ(heightOf("overview.top-app-memory"), many) << samples;
    }
    tick();
    EXPECT_EQ(heightOf("overview.top-app-memory"), waiting);
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
