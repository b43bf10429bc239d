#include "presentation/screens/history/history_page.h"

#include <QPushButton>

#include "actions/actions.h"
#include "core/activity_kinds.h"
#include "core/settings/settings.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/words/dashboard_text.h"
#include "remote/remote.h"
#include "tests/presentation/screens/overview/overview_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;

class HistoryPageTest : public OverviewFixture {
protected:
    HistoryPageTest() {
        machine.storeOnPasteboard = [this](const std::string& text) { copied.push_back(text); };
    }

    void showHistory() {
        showWithSample();
        goTo(AppRoute::history);
    }

    std::vector<std::string> sessionCards() {
        std::vector<std::string> found;
        for (const char* each : {"history.session-1", "history.session-2", "history.session-3"}) {
            const auto* card = visible<SummaryCard>(each);
            found.push_back(
                (card->accessibleName() + u": "_s + card->accessibleValue()).toStdString());
        }
        return found;
    }

    std::vector<std::string> copied;
};

TEST_F(HistoryPageTest, ItsPartsStandInTheirOrder) {
    showHistory();
    int below = -1;
    for (const char* each : {"history.timeline", "history.remote-timeline", "history.session-1",
                             "history.automation", "history.receipts", "history.activity-log"}) {
        const QWidget* part = visible(each);
        ASSERT_NE(part, nullptr) << each;
        const int top = part->mapTo(&window(), QPoint()).y();
        EXPECT_GT(top, below) << each;
        below = top;
    }
}

TEST_F(HistoryPageTest, TheTimelineIsTheOneOfTheOverview) {
    showWithSample();
    machine.metrics->memory.pressure = 44.6;
    tick();
    machine.monitor().log().recordEvent(ActivityKind::action, "Something");
    tick();
    const auto graphOn = [this](AppRoute each) {
        goTo(each);
        for (auto* graph : window().findChildren<StableLineGraph*>()) {
            if (graph->isVisible()) {
                return graph;
            }
        }
        throw std::runtime_error("no graph is shown");
    };
    StableLineGraph* there = graphOn(AppRoute::overview);
    StableLineGraph* here = graphOn(AppRoute::history);
    ASSERT_NE(here, there);
    EXPECT_EQ(here->accessibleValue(), u"CPU 40 percent, Memory 45 percent"_s);
    EXPECT_EQ(here->accessibleValue(), there->accessibleValue());
    // The lines, the event and the threshold: all that is painted.
    there->setMinimumHeight(0);
    there->resize(here->size());
    EXPECT_EQ(here->grab().toImage(), there->grab().toImage());
}

TEST_F(HistoryPageTest, TheTimelineCountsItsPoints) {
    goTo(AppRoute::history);
    show();
    EXPECT_THAT(texts("history.timeline"), ElementsAre("Local Timeline", "Last 0"));
    machine.finishSamples();
    settle();
    EXPECT_THAT(texts("history.timeline"), ElementsAre("Local Timeline", "Last 1"));
    for (int i = 0; i < 200; ++i) {
        machine.tick();
    }
    settle();
    EXPECT_THAT(texts("history.timeline"), ElementsAre("Local Timeline", "Last 180"));
}

TEST_F(HistoryPageTest, TheSessionBeforeAndAfterTheFirstSample) {
    goTo(AppRoute::history);
    show();
    EXPECT_THAT(
        sessionCards(),
        ElementsAre("Remote State: Not scanned, Use Scan Remote Macs in the Tailscale section.",
                    "Current State: –, Sampling this Mac...",
                    "Top Repeater: None yet, Most visible app group in this Tallowcrest session."));
    insights = {
        {UUID::random(), "Recurring Top App", "editor", "Led", SessionInsight::Kind::topApp}};
    machine.finishSamples();
    settle();
    const std::string time =
        dashboard_text::timeText(machine.monitor().sample().snapshot()->sampledAt).toStdString();
    EXPECT_THAT(
        sessionCards(),
        ElementsAre("Remote State: Not scanned, Use Scan Remote Macs in the Tailscale section.",
                    "Current State: 40% CPU, Memory pressure 59% at " + time,
                    "Top Repeater: editor, Most visible app group in this Tallowcrest session."));
}

TEST_F(HistoryPageTest, AScanOfTheOtherMachinesIsShownWithoutATick) {
    showHistory();
    EXPECT_THAT(texts("history.remote-timeline"),
                Contains("Run a remote scan to begin tracking remote CPU and memory trends."));
    machine.monitor().remote().scan.finishRemoteScan({{.id = "a",
                                                       .hostName = "mini",
                                                       .status = RemoteHealth::Status::reachable,
                                                       .cpuPercent = 20,
                                                       .memoryPercent = 61.5,
                                                       .sampledAt = machine.clock.now()},
                                                      {.id = "b",
                                                       .hostName = "air",
                                                       .status = RemoteHealth::Status::authNeeded,
                                                       .sampledAt = machine.clock.now()}});
    settle();
    EXPECT_THAT(texts("history.remote-timeline"),
                Contains("1 remote samples retained across recent scans."));
    EXPECT_EQ(sessionCards()[0],
              "Remote State: 1 reachable · just now, Highest remote memory pressure 62%");
    goTo(AppRoute::overview);
    EXPECT_EQ(textOf("overview.remote-alerts"), u"1 Remote Alerts"_s);
}

TEST_F(HistoryPageTest, TheAgeOfAScanIsThatOfTheClockBeforeTheFirstSampleToo) {
    goTo(AppRoute::history);
    show();
    const Date scanned = machine.clock.now();
    machine.monitor().remote().scan.finishRemoteScan({{.id = "a",
                                                       .hostName = "mini",
                                                       .status = RemoteHealth::Status::reachable,
                                                       .memoryPercent = 61.5,
                                                       .sampledAt = scanned}});
    settle();
    EXPECT_THAT(
        texts("history.remote-timeline"),
        Contains("Last sample " + dashboard_text::shortTimeText(scanned, scanned).toStdString()));
    EXPECT_THAT(sessionCards()[0], testing::HasSubstr("1 reachable · just now"));
    machine.clock.advance(std::chrono::minutes(2));
    machine.finishSamples();
    settle();
    EXPECT_THAT(sessionCards()[0], testing::HasSubstr("1 reachable · 2 min ago"));
}

TEST_F(HistoryPageTest, TheAutomationBlockSwitchesTheRules) {
    showHistory();
    EXPECT_THAT(
        texts("history.automation"),
        AllOf(Contains("Auto-select safest top offender"),
              Contains("When load crosses the warning threshold, select a non-protected top app "
                       "for review. Does not quit anything."),
              Contains("Auto-purge after sustained high memory"),
              Contains("Purges reclaimable file caches only after memory pressure stays high, "
                       "with a 15-minute cooldown."),
              Contains("Auto-scan Tailscale Macs"),
              Contains("Refreshes remote Mac health about every 15 minutes when online Tailnet "
                       "Macs are available.")));
    click("history.automation.auto-purge");
    EXPECT_TRUE(machine.monitor().settings().autoPurgeSustainedMemory);
    EXPECT_EQ(lastAction(), "Auto-purge for sustained high memory enabled.");
    EXPECT_TRUE(visible<QAbstractButton>("history.automation.auto-purge")->isChecked());
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    EXPECT_FALSE(visible<QAbstractButton>("history.automation.auto-purge")->isChecked());
    click("history.automation.auto-purge");
    EXPECT_FALSE(machine.monitor().settings().autoPurgeSustainedMemory);
    EXPECT_FALSE(visible<QAbstractButton>("history.automation.auto-purge")->isChecked());
    EXPECT_EQ(lastAction(), "Auto-purge remains off while Emergency Stop is engaged.");
    EXPECT_EQ(textOf("status.last-action"), QString::fromStdString(lastAction()));
}

TEST_F(HistoryPageTest, EachSwitchSetsItsFieldAtOnceAndStoresIt) {
    struct Rule {
        AutomationSwitch which;
        const char* identifier;
        std::string_view key;
    };
    constexpr Rule rules[] = {
        {AutomationSwitch::autoSelectTopOffender, "history.automation.auto-select",
         settings_keys::autoSelectKey},
        {AutomationSwitch::autoPurgeSustainedMemory, "history.automation.auto-purge",
         settings_keys::autoPurgeKey},
        {AutomationSwitch::autoScanRemoteMacs, "history.automation.auto-scan",
         settings_keys::autoRemoteScanKey},
    };
    showHistory();
    for (const Rule& rule : rules) {
        auto* toggle = visible<QAbstractButton>(rule.identifier);
        const bool before = machine.monitor().actions().automation.isOn(rule.which);
        EXPECT_EQ(toggle->isChecked(), before) << rule.identifier;
        for (const bool on : {!before, before}) {
            QTest::mouseClick(toggle, Qt::LeftButton);
            EXPECT_EQ(machine.monitor().actions().automation.isOn(rule.which), on)
                << rule.identifier;
            EXPECT_EQ(toggle->isChecked(), on) << "before the next turn of the main thread";
            EXPECT_EQ(machine.store.read(rule.key), SettingsValue(on));
        }
    }
}

TEST_F(HistoryPageTest, ARuleThatActedSaysWhen) {
    machine.metrics->memory.pressure = 90.0;
    showHistory();
    EXPECT_TRUE(textOf("history.automation.auto-select.last-acted").startsWith(u"Last acted "_s));
    EXPECT_EQ(textOf("history.automation.auto-purge.last-acted"), u"No recent action"_s);
}

// Receipts ---------------------------------------------------------------------------------------

TEST_F(HistoryPageTest, TheReceiptsSayWhatTheyHold) {
    showHistory();
    EXPECT_THAT(texts("history.receipts"),
                ElementsAre("Exportable Receipts",
                            "Diagnostics exports include local load, remote health, AI "
                            "recommendations, action settings, and recent activity without "
                            "exposing your OpenAI key."));
    EXPECT_EQ(visible<QPushButton>("history.receipts.copy-report")->text(), u"Copy Report"_s);
    EXPECT_EQ(visible<QPushButton>("history.receipts.export")->text(), u"Export"_s);
}

TEST_F(HistoryPageTest, CopyReportCopiesTheReportFromCardAndHeaderAlike) {
    showHistory();
    for (const char* each : {"history.receipts.copy-report", "history.copy-report"}) {
        copied.clear();
        machine.monitor().log().setLastAction("");
        const auto report = machine.monitor().reports().diagnosticsReport(false);
        click(each);
        EXPECT_THAT(copied, ElementsAre(*report)) << each;
        EXPECT_EQ(lastAction(), "Copied a performance report to the clipboard.") << each;
    }
}

TEST_F(HistoryPageTest, BeforeTheFirstSampleCopyChangesNothing) {
    goTo(AppRoute::history);
    show();
    const std::string before = lastAction();
    for (const char* each : {"history.receipts.copy-report", "history.copy-report"}) {
        click(each);
    }
    EXPECT_TRUE(copied.empty());
    EXPECT_EQ(lastAction(), before);
    EXPECT_TRUE(machine.monitor().log().activityLog().empty());
}

TEST_F(HistoryPageTest, ExportSaysWhyItDidNotExport) {
    goTo(AppRoute::history);
    show();
    for (const char* each : {"history.receipts.export", "history.export"}) {
        machine.monitor().log().setLastAction("");
        click(each);
        EXPECT_EQ(textOf("status.last-action"), u"No diagnostic sample is available yet."_s)
            << each;
    }
    machine.finishSamples();
    settle();
    machine.reportFolder->problem = "No space left on device";
    for (const char* each : {"history.receipts.export", "history.export"}) {
        machine.monitor().log().setLastAction("");
        click(each);
        machine.finishSamples();
        settle();
        EXPECT_EQ(textOf("status.last-action"),
                  u"Could not export diagnostics: No space left on device"_s)
            << each;
    }
    machine.reportFolder->problem.reset();
    click("history.export");
    machine.finishSamples();
    settle();
    ASSERT_EQ(machine.reportFolder->written.size(), 1U);
    EXPECT_EQ(textOf("status.last-action").toStdString(),
              "Exported diagnostics to " + machine.reportFolder->written.begin()->first + ".");
}

}  // namespace
}  // namespace tallowcrest
