// Closing and opening the sections of the overview.

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/settings/settings.h"
#include "presentation/screens/shared/overview_block.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/gauge_card.h"
#include "tests/presentation/screens/overview/overview_fixture.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OverviewSectionsTest : public OverviewFixture {
protected:
    SectionHeader* header(const char* identifier) { return visible<SectionHeader>(identifier); }

    OverviewBlock* block(DashboardSection section) {
        for (auto* each : window().findChildren<OverviewBlock*>()) {
            if (each->section() == section) {
                return each;
            }
        }
        return nullptr;
    }

    /// The identifiers of the sections from top to bottom.
    std::string order() {
        std::vector<std::pair<int, QString>> places;
        const QWidget* page = window().findChild<QScrollArea*>()->widget();
        for (const SectionHeader* each : window().findChildren<SectionHeader*>()) {
            places.emplace_back(each->mapTo(page, QPoint()).y(), each->objectName());
        }
        std::sort(places.begin(), places.end());
        QStringList names;
        for (const auto& [y, name] : places) {
            names.append(name);
        }
        return names.join(u' ').toStdString();
    }

    SettingsTextList stored() {
        const auto value = machine.store.read(settings_keys::collapsedSectionsKey);
        return value ? std::get<SettingsTextList>(*value) : SettingsTextList{"never written"};
    }

    void choose(const char* identifier) {
        for (const auto& group : menuBarEntries(machine.monitor(), window())) {
            for (const MenuBarEntry& entry : group) {
                if (entry.identifier == QString::fromLatin1(identifier)) {
                    entry.run();
                    settle();
                    return;
                }
            }
        }
        ADD_FAILURE() << "no entry " << identifier;
    }

    bool allAreCollapsed(bool collapsed) {
        const auto blocks = window().findChildren<OverviewBlock*>();
        return blocks.size() == 9 &&
               std::all_of(blocks.begin(), blocks.end(), [collapsed](const OverviewBlock* each) {
                   return each->isCollapsed() == collapsed &&
                          each->body()->isVisible() != collapsed;
               });
    }
};

TEST_F(OverviewSectionsTest, StandInTheirOrder) {
    window().resize(900, 600);
    showWithSample();
    EXPECT_EQ(order(),
              "section.recommendations section.gauges section.recentLoad section.appImpact "
              "section.autoRules section.heavyProcesses section.activityLog section.dailySummary "
              "section.sessionInsights");
    EXPECT_TRUE(allAreCollapsed(false));
}

TEST_F(OverviewSectionsTest, AClickOnTheHeaderClosesAndOpens) {
    showWithSample();
    ASSERT_NE(visible("overview.gauges"), nullptr);
    click("section.gauges");
    EXPECT_EQ(visible("overview.gauges"), nullptr);
    EXPECT_THAT(stored(), ElementsAre("gauges"));
    EXPECT_EQ(visible("overview.system-gauges")->height(), header("section.gauges")->height());
    click("section.gauges");
    EXPECT_NE(visible("overview.gauges"), nullptr);
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(OverviewSectionsTest, KeysCloseAndOpenAndTheFocusStays) {
    showWithSample();
    header("section.recentLoad")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Left);
    EXPECT_THAT(stored(), ElementsAre("recentLoad"));
    press(Qt::Key_Right);
    EXPECT_THAT(stored(), IsEmpty());
    press(Qt::Key_Return);
    EXPECT_THAT(stored(), ElementsAre("recentLoad"));
    press(Qt::Key_Space);
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_EQ(QApplication::focusWidget(), header("section.recentLoad"));
}

TEST_F(OverviewSectionsTest, ANewWindowRestoresTheCollapsedSections) {
    machine.store.write(settings_keys::collapsedSectionsKey,
                        SettingsTextList{"gauges", "noSuchSection", "recommendations"});
    showWithSample();
    EXPECT_TRUE(block(DashboardSection::gauges)->isCollapsed());
    EXPECT_TRUE(block(DashboardSection::recommendations)->isCollapsed());
    EXPECT_FALSE(block(DashboardSection::recentLoad)->isCollapsed());
    click("section.recentLoad");
    DashboardWindow second(machine.monitor());
    second.show();
    settle();
    const auto* timeline = second.findChild<OverviewBlock*>(u"overview.timeline"_s);
    ASSERT_NE(timeline, nullptr);
    EXPECT_TRUE(timeline->isCollapsed());
}

TEST_F(OverviewSectionsTest, TheCommandsCloseAndOpenAll) {
    showWithSample();
    choose("menubar.collapse-sections");
    EXPECT_TRUE(allAreCollapsed(true));
    EXPECT_EQ(lastAction(), "Collapsed all dashboard sections.");
    choose("menubar.expand-sections");
    EXPECT_TRUE(allAreCollapsed(false));
    EXPECT_EQ(lastAction(), "Expanded all dashboard sections.");
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(OverviewSectionsTest, AClosedSectionDoesNoWorkAndCatchesUpWhenItOpens) {
    const auto textsWithin = [this](const char* identifier) {
        std::vector<std::string> found;
        const auto* section = window().findChild<OverviewBlock*>(QString::fromLatin1(identifier));
        for (const ElidedLabel* label : section->body()->findChildren<ElidedLabel*>()) {
            found.push_back(label->text().toStdString());
        }
        for (const BarList* bars : section->body()->findChildren<BarList*>()) {
            found.push_back(bars->accessibleValue().toStdString());
        }
        for (const GaugeCard* gauge : section->body()->findChildren<GaugeCard*>()) {
            found.push_back(gauge->accessibleValue().toStdString());
        }
        for (const SummaryCard* card : section->body()->findChildren<SummaryCard*>()) {
            found.push_back(card->accessibleValue().toStdString());
        }
        return found;
    };
    showWithSample();
    window().state().sections.collapseAll();
    settle();
    std::map<std::string, std::vector<std::string>> before;
    for (const OverviewBlock* each : window().findChildren<OverviewBlock*>()) {
        const std::string identifier = each->objectName().toStdString();
        before[identifier] = textsWithin(identifier.c_str());
    }
    ASSERT_THAT(before, SizeIs(9));
    machine.metrics->processes[0].cpu = 250.0;
    machine.metrics->memory.pressure = 90.0;
    machine.metrics->disk = {200.0, 10.0};
    machine.addProcess(900, "/usr/bin/newcomer", 5.0, 4096.0);
    recommendations = {recommend("Busy", Recommendation::Severity::caution)};
    insights = {{UUID::random(), "Peak CPU", "97%", "Average 40% across this session."}};
    tick();
    for (const auto& [identifier, found] : before) {
        EXPECT_EQ(textsWithin(identifier.c_str()), found) << identifier;
    }
    window().state().sections.expandAll();
    settle();
    for (const auto& [identifier, found] : before) {
        EXPECT_NE(textsWithin(identifier.c_str()), found) << identifier;
    }
}

TEST_F(OverviewSectionsTest, WithAllClosedASamplePaintsOnlyWhatShows) {
    showWithSample();
    window().state().sections.collapseAll();
    settle();
    tick();
    PaintCount all(window());
    std::vector<std::unique_ptr<PaintCount>> bodies;
    for (const SectionCard* section : window().findChildren<SectionCard*>()) {
        bodies.push_back(std::make_unique<PaintCount>(*section->body()));
    }
    const auto takeInBodies = [&bodies] {
        int sum = 0;
        for (const auto& each : bodies) {
            sum += each->take();
        }
        return sum;
    };
    machine.metrics->processes[0].cpu = 250.0;
    machine.metrics->memory.pressure = 90.0;
    tick();
    EXPECT_EQ(takeInBodies(), 0);
    EXPECT_GT(all.take(), 0) << "the captions that show go on";
    click("section.gauges");
    EXPECT_GT(takeInBodies(), 0) << "the count is alive";
}

TEST_F(OverviewSectionsTest, ClosingASectionLeavesItsHeaderWhereItIs) {
    window().resize(900, 600);
    showWithSample();
    header("section.recentLoad")->setFocus(Qt::TabFocusReason);
    const QPoint before = header("section.recentLoad")->mapTo(&window(), QPoint());
    press(Qt::Key_Left);
    EXPECT_EQ(header("section.recentLoad")->mapTo(&window(), QPoint()), before);
}

}  // namespace
}  // namespace tallowcrest
