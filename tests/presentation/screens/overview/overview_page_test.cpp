#include "presentation/screens/overview/overview_page.h"

#include <chrono>

#include <QAccessible>
#include <QPushButton>

#include "core/activity_kinds.h"
#include "core/settings/settings.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/stable_line_graph.h"
#include "remote/remote.h"
#include "tests/presentation/screens/overview/overview_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class OverviewPageTest : public OverviewFixture {
protected:
    /// The one widget of its kind with that accessible name.
    template <class Widget>
    Widget& named(const char* name) {
        for (Widget* each : window().findChildren<Widget*>()) {
            if (each->accessibleName() == QString::fromUtf8(name)) {
                return *each;
            }
        }
        throw std::runtime_error(std::string("nothing is named ") + name);
    }

    /// Every text on the screen.
    std::vector<std::string> texts() { return shownTexts(window()); }
};

// What is shown ----------------------------------------------------------------------------------

TEST_F(OverviewPageTest, SaysThatItSamplesUntilTheFirstSample) {
    show();
    EXPECT_EQ(named<GaugeCard>("CPU Load").accessibleValue(), u"Sampling this Mac..."_s);
    EXPECT_EQ(named<GaugeCard>("CPU Load").accessiblePercent(), std::nullopt);
    // The trust is known without a sample.
    EXPECT_THAT(texts(), Not(Contains(AllOf(HasSubstr("0%"), Not(HasSubstr("trust"))))));
    EXPECT_TRUE(
        named<GaugeCard>("Memory Pressure").accessibleValue().endsWith(u"Sampling this Mac..."_s));
    EXPECT_TRUE(named<MetricCard>("Free / Reclaimable")
                    .accessibleValue()
                    .endsWith(u"Sampling this Mac..."_s));
    EXPECT_THAT(texts(), Contains("Current session · last 0 seconds · updates every 4 seconds"));
    EXPECT_THAT(texts(), Contains("Collecting app impact samples…"));
    EXPECT_EQ(named<BarList>("Resident memory by app group").accessibleValue(),
              u"Sampling apps…"_s);
    for (const StableLineGraph* graph : window().findChildren<StableLineGraph*>()) {
        EXPECT_EQ(graph->accessibleValue(), QString()) << "without history the graph is blank";
    }
}

TEST_F(OverviewPageTest, EveryBlockShowsItsPartOfTheSample) {
    machine.metrics->disk = {200.0, 50.0};
    recommendations = {recommend("Busy", Recommendation::Severity::caution),
                       recommend("Full", Recommendation::Severity::urgent)};
    insights = {{UUID::random(), "Peak CPU", "97%", "Average 40% across this session."},
                {UUID::random(), "Remote Watch", "attic", "Highest.",
                 SessionInsight::Kind::remoteWatch, machine.clock.now()}};
    showWithSample();
    machine.monitor().log().recordEvent(ActivityKind::warning, "Load is high");
    settle();
    EXPECT_EQ(OverviewFixture::texts("overview.recommendations").front(), "Full")
        << "the most severe leads";
    EXPECT_THAT(texts(), Contains("Busy in detail"));
    EXPECT_EQ(named<GaugeCard>("CPU Load").value(), 40.0);
    EXPECT_EQ(named<GaugeCard>("Memory Pressure").value(), 59.4);
    EXPECT_EQ(window().findChild<StableLineGraph*>()->accessibleValue(),
              u"CPU 40 percent, Memory 59 percent"_s);
    EXPECT_THAT(texts(), Contains("Avg 40% · Warn 82%"));
    EXPECT_EQ(named<BarList>("Resident memory by app group").rows().front().label,
              u"photo-indexer"_s);
    EXPECT_EQ(textOf("overview.disk-autopilot-status"), u"Disk Autopilot is off."_s);
    EXPECT_THAT(texts(), Contains("System Looks Stable"));
    EXPECT_THAT(OverviewFixture::texts("overview.recent-activity"), Contains("Load is high"));
    EXPECT_THAT(cards("overview.session-summary"), Contains(HasSubstr("1 warnings")));
    EXPECT_THAT(cards("overview.session-insights"),
                ElementsAre("Peak CPU: 97%, Average 40% across this session.",
                            "Remote Watch: attic, Highest. Sampled just now."));
}

TEST_F(OverviewPageTest, TopAppMemoryHasABarForEveryGroup) {
    for (std::int64_t i = 0; i < 12; ++i) {
        machine.addProcess(3000 + i, "/opt/app-" + std::to_string(i), 5.0,
                           4000.0 + static_cast<double>(i));
    }
    showWithSample();
    const BarList& bars = named<BarList>("Resident memory by app group");
    // Twelve, the photo indexer and the editor; the service manager is too small for a group.
    ASSERT_THAT(bars.rows(), SizeIs(14));
    EXPECT_EQ(bars.rows()[0].label, u"app-11"_s);
}

TEST_F(OverviewPageTest, TheFirstPaintingAlreadyHasEveryCardInItsRoom) {
    insights = {
        {UUID::random(), "Peak CPU", "97%", "Average"},
        {UUID::random(), "Peak Memory", "80%", "Average"},
        {UUID::random(), "Recurring Top App", "editor", "Led", SessionInsight::Kind::topApp},
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

/// Counts the layouts that any widget asks for.
class LayoutCount : public QObject {
public:
    LayoutCount() { qApp->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::LayoutRequest ? 1 : 0;
        return false;
    }
    int count = 0;
};

TEST_F(OverviewPageTest, NewFiguresOfTheSameLengthCauseNoLayout) {
    machine.store.write(settings_keys::thresholdKey, 95.0);
    machine.recommendations = {{UUID::random(), "Memory pressure is rising", "Look at it",
                                Recommendation::Severity::caution, 800}};
    showWithSample();
    // What showing the page asked for is to be behind it, and the seconds that an application led
    // are to have their second digit.
    tick();
    tick();
    LayoutCount layouts;
    // Memory goes from Normal through Elevated to High and back.
    for (const double pressure : {61.0, 72.0, 90.0, 65.0}) {
        machine.metrics->memory.pressure = pressure;
        machine.metrics->memory.usedGB = pressure / 10;
        tick();
    }
    EXPECT_EQ(layouts.count, 0);
    window()
        .findChild<ElidedLabel*>(u"status.last-action"_s)
        ->setText(u"An outcome of other words"_s);
    settle();
    EXPECT_GT(layouts.count, 0) << "the count is alive";
}

// What can be done -------------------------------------------------------------------------------

TEST_F(OverviewPageTest, ReviewSelectsTheProcessAndGoesToProcesses) {
    recommendations = {recommend("Memory", Recommendation::Severity::urgent, 700),
                       recommend("CPU", Recommendation::Severity::caution, 800),
                       recommend("Gone", Recommendation::Severity::caution, 999)};
    showWithSample();
    EXPECT_EQ(visible("overview.recommendation-3.review"), nullptr);
    click("overview.recommendation-2.review");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(route(), AppRoute::load);
    goTo(AppRoute::overview);
    click("overview.recommendation-1.review");
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_EQ(route(), AppRoute::load);
}

TEST_F(OverviewPageTest, TheTopOffenderCanBeReviewed) {
    showWithSample();
    EXPECT_EQ(visible("overview.review-top-offender"), nullptr) << "nothing offends";
    machine.metrics->memory.pressure = 82.0;
    tick();
    window().state().navigation.setProcessFilter("editor");
    click("overview.review-top-offender");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(route(), AppRoute::load);
    EXPECT_EQ(window().state().navigation.processFilter(), "");
    EXPECT_EQ(lastAction(), "Selected the heaviest process inside photo-indexer.");
}

TEST_F(OverviewPageTest, ItsButtonsLeadToOtherRoutes) {
    machine.metrics->memory.pressure = 82.0;
    showWithSample();
    click("overview.review-cleanup-options");
    EXPECT_EQ(route(), AppRoute::optimize);
    goTo(AppRoute::overview);
    click("overview.open-history");
    EXPECT_EQ(route(), AppRoute::history);
}

TEST_F(OverviewPageTest, RemoteAlertsTellTheirAgeAndLeadToTheMachines) {
    showWithSample();
    machine.monitor().remote().scan.finishRemoteScan({{.id = "a",
                                                       .hostName = "air",
                                                       .status = RemoteHealth::Status::authNeeded,
                                                       .sampledAt = machine.clock.now()}});
    settle();
    EXPECT_EQ(textOf("overview.remote-alerts"), u"1 Remote Alerts"_s);
    EXPECT_EQ(textOf("overview.remote-alerts.age"), u"Scanned just now"_s);
    machine.clock.advance(std::chrono::minutes(3));
    machine.monitor().refresh();
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("overview.remote-alerts.age"), u"Scanned 3 min ago"_s);
    click("overview.open-remote-macs");
    EXPECT_EQ(route(), AppRoute::remoteMacs);
}

TEST_F(OverviewPageTest, AssistiveTechnologyMayCountThroughAPageThatIsGoingAway) {
    showWithSample();
    auto* area = window().findChild<QScrollArea*>();
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(area);
    ASSERT_NE(spoken, nullptr);
    const int children = spoken->childCount();
    ASSERT_GT(children, 0);
    goTo(AppRoute::optimize);
    for (int index = -1; index <= children + 1; ++index) {
        QAccessibleInterface* child = spoken->child(index);
        EXPECT_EQ(child != nullptr, index >= 0 && index < spoken->childCount()) << index;
    }
}

}  // namespace
}  // namespace tallowcrest
