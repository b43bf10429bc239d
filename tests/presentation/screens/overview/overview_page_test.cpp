#include "presentation/screens/overview/overview_page.h"

#include <QAccessible>
#include <QSignalSpy>

#include "core/settings_keys.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/gauge_card.h"
#include "presentation/widgets/stable_line_graph.h"
#include "presentation/widgets/summary_card.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class OverviewPageTest : public WindowFixture {
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
    std::vector<std::string> texts() {
        std::vector<std::string> found;
        for (const ElidedLabel* label : window().findChildren<ElidedLabel*>()) {
            if (label->isVisible()) {
                found.push_back(label->text().toStdString());
            }
        }
        return found;
    }

    /// What stands below a caption of the timeline's row of figures.
    QString figureBelow(const char* caption) {
        const ElidedLabel& name = named<ElidedLabel>(caption);
        for (const ElidedLabel* label : name.parentWidget()->findChildren<ElidedLabel*>()) {
            if (label->x() == name.x() && label->y() > name.y()) {
                return label->text();
            }
        }
        return {};
    }
};

TEST_F(OverviewPageTest, SaysThatItSamplesUntilTheFirstSample) {
    show();
    EXPECT_EQ(named<GaugeCard>("CPU Load").accessibleValue(), u"Sampling this Mac..."_s);
    EXPECT_EQ(named<GaugeCard>("CPU Load").accessiblePercent(), std::nullopt);
    EXPECT_THAT(texts(), Not(Contains(HasSubstr("0%"))));
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

TEST_F(OverviewPageTest, GaugesShowTheSample) {
    showWithSample();
    const GaugeCard& cpu = named<GaugeCard>("CPU Load");
    EXPECT_EQ(cpu.value(), 40.0);
    EXPECT_EQ(cpu.accessibleValue(), u"40%, Normal, 40% normalized across cores"_s);
    const GaugeCard& memory = named<GaugeCard>("Memory Pressure");
    EXPECT_EQ(memory.value(), 59.4);
    EXPECT_EQ(memory.accessibleValue(), u"59%, Normal, 9.5 GB used of 16.0 GB"_s);
    EXPECT_EQ(named<MetricCard>("Free / Reclaimable").accessibleValue(),
              u"6.5 GB, 6.5 GB free · Wired 2.3 GB · Compressed 0.5 GB"_s);
}

TEST_F(OverviewPageTest, GaugesAreToldFromOutsideAsOnePart) {
    showWithSample();
    const QWidget* gauges = visible("overview.gauges");
    ASSERT_NE(gauges, nullptr);
    EXPECT_TRUE(gauges->isAncestorOf(&named<GaugeCard>("CPU Load")));
    EXPECT_TRUE(gauges->isAncestorOf(&named<GaugeCard>("Memory Pressure")));
    EXPECT_TRUE(gauges->isAncestorOf(&named<MetricCard>("Free / Reclaimable")));
    EXPECT_NE(gauges->accessibleName(), visible("overview.system-gauges")->accessibleName());
}

TEST_F(OverviewPageTest, TimelineGivesNowPeakAverageAndThreshold) {
    showWithSample();
    machine.metrics->processes[0].cpu = 250.0;
    machine.metrics->memory.pressure = 30.0;
    tick();
    machine.metrics->processes[0].cpu = 50.0;
    machine.metrics->memory.pressure = 44.6;
    tick();
    EXPECT_EQ(figureBelow("CPU now"), u"20%"_s);
    EXPECT_EQ(figureBelow("Memory now"), u"45%"_s);
    EXPECT_EQ(figureBelow("CPU peak"), u"70%"_s);
    EXPECT_EQ(figureBelow("Memory peak"), u"59%"_s);
    EXPECT_THAT(texts(), Contains("Avg 43% · Warn 82%"));
    EXPECT_THAT(texts(), Contains("Current session · last 12 seconds · updates every 4 seconds"));
    EXPECT_EQ(window().findChild<StableLineGraph*>()->accessibleValue(),
              u"CPU 20 percent, Memory 45 percent"_s);
}

TEST_F(OverviewPageTest, TopAppMemoryListsTheLargestGroups) {
    showWithSample();
    const BarList& bars = named<BarList>("Resident memory by app group");
    ASSERT_THAT(bars.rows(), SizeIs(2));
    EXPECT_EQ(bars.rows()[0].label, u"photo-indexer"_s);
    EXPECT_EQ(bars.rows()[0].valueText, u"2.0 GB"_s);
    EXPECT_EQ(bars.rows()[0].fraction, 1.0);
    EXPECT_EQ(bars.rows()[1].label, u"editor"_s);
    EXPECT_EQ(bars.rows()[1].fraction, 0.5);
    EXPECT_THAT(texts(), Contains("Largest app groups by resident memory right now"));
    EXPECT_THAT(texts(), Not(Contains("Collecting app impact samples…")));
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

TEST_F(OverviewPageTest, ASampleWithoutGroupsSaysThatItCollects) {
    showWithSample();
    machine.metrics->processes.clear();
    tick();
    EXPECT_THAT(named<BarList>("Resident memory by app group").rows(), IsEmpty());
    EXPECT_THAT(texts(), Contains("Collecting app impact samples…"));
}

TEST_F(OverviewPageTest, FiguresThatCannotBeReadAreZeroAndNotNonsense) {
    machine.metrics->processes.clear();
    machine.metrics->memory = {};
    showWithSample();
    EXPECT_EQ(named<GaugeCard>("CPU Load").accessibleValue(),
              u"0%, Normal, 0% normalized across cores"_s);
    EXPECT_EQ(named<GaugeCard>("Memory Pressure").accessibleValue(),
              u"0%, Normal, 0.0 GB used of 0.0 GB"_s);
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

TEST_F(OverviewPageTest, NewFiguresOfAsManyDigitsLayNothingOutAnew) {
    machine.store.write(settings_keys::thresholdKey, 95.0);
    machine.extensions.background.buildRecommendations = [](const auto&, double, double, double) {
        return std::vector<Recommendation>{{UUID::random(), "Memory pressure is rising",
                                            "Look at it", Recommendation::Severity::caution, 800}};
    };
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

}  // namespace
}  // namespace tallowcrest
