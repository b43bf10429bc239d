#include "presentation/screens/shared/remote_timeline_card.h"

#include <map>
#include <string>
#include <utility>

#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>
#include <gmock/gmock.h>

#include "presentation/widgets/stable_line_graph.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class RemoteTimelineCardTest : public OverviewBlockTest {
protected:
    void add(double seconds, const std::string& hostName, double cpu, double memory) {
        history.push_back({UUID::random(), hostName, Date{seconds}, cpu, memory, "Reachable"});
    }

    std::string said(const char* graph) {
        return visible<StableLineGraph>(graph)->accessibleDescription().toStdString();
    }

    RemoteTimelineCard& card = place(new RemoteTimelineCard(u"remote.timeline"_s));
    std::vector<RemoteHistoryPoint> history;
};

TEST_F(RemoteTimelineCardTest, SaysWhatToDoBeforeTheFirstScan) {
    card.show(history, Date{0});
    EXPECT_THAT(texts(card),
                Contains("Run a remote scan to begin tracking remote CPU and memory trends."));
    EXPECT_EQ(visible("remote.timeline.memory"), nullptr);
    EXPECT_EQ(visible("remote.timeline.left-out"), nullptr);
}

TEST_F(RemoteTimelineCardTest, ShowsALinePerMachineForMemoryAndForCPU) {
    add(0, "air", 10, 40);
    add(900, "air", 12, 41);
    add(905, "mini", 30, 60);
    card.show(history, Date{1000});
    EXPECT_THAT(texts(card), Contains("3 remote samples retained across recent scans."));
    EXPECT_EQ(said("remote.timeline.memory"), "mini 60 percent, air 41 percent");
    EXPECT_EQ(said("remote.timeline.cpu"), "mini 30 percent, air 12 percent");
    for (const auto& [graph, part] :
         {std::pair{"remote.timeline.memory", u"Memory"_s}, {"remote.timeline.cpu", u"CPU"_s}}) {
        EXPECT_EQ(visible(graph)->accessibleName(), u"Performance graph"_s);
        EXPECT_EQ(visible(graph)->parentWidget()->accessibleName(), part);
    }
    add(1800, "air", 90, 95);
    card.show(history, Date{1900});
    EXPECT_EQ(said("remote.timeline.memory"),
              "air 95 percent, mini not measured last, before 60 percent");
    EXPECT_EQ(visible("remote.timeline.left-out"), nullptr);
    history.clear();
    card.show(history, Date{1900});
    EXPECT_EQ(visible("remote.timeline.memory"), nullptr);
}

TEST_F(RemoteTimelineCardTest, NamesTheCountOfTheMachinesThatItDoesNotDraw) {
    for (int machine = 0; machine < 7; ++machine) {
        add(machine, "mac" + std::to_string(machine), 0, 10.0 * machine);
    }
    card.show(history, Date{10});
    EXPECT_THAT(texts(card), Contains("Shows the 4 machines with the highest load. 3 more are not "
                                      "drawn."));
    EXPECT_THAT(said("remote.timeline.memory"), HasSubstr("mac3"));
    EXPECT_THAT(said("remote.timeline.memory"), Not(HasSubstr("mac2")));
    card.show(history, Date{10}, {}, "mac1");
    EXPECT_THAT(said("remote.timeline.memory"), HasSubstr("mac1"));
    EXPECT_THAT(said("remote.timeline.memory"), Not(HasSubstr("mac3")));
    EXPECT_THAT(texts(card), Contains("Shows the selected machine and the 3 with the highest load. "
                                      "3 more are not drawn."));
}

TEST_F(RemoteTimelineCardTest, NamesTheMachinesAsTheirProfilesDoAndTellsTheirHosts) {
    add(0, "air", 10, 40);
    add(5, "mini", 30, 60);
    std::map<std::string, RemoteProfile> profiles{{"mini", {.id = "mini", .nickname = "mini"}}};
    card.show(history, Date{1000}, profiles);
    EXPECT_EQ(said("remote.timeline.memory"), "mini 60 percent, air 40 percent");
    const auto legendTip = [this] {
        QHelpEvent event(QEvent::ToolTip, {20, 4}, {20, 4});
        QApplication::sendEvent(visible("remote.timeline.memory"), &event);
        return QToolTip::text();
    };
    EXPECT_EQ(legendTip(), QString());
    profiles["mini"].nickname = "<b>Attic";
    card.show(history, Date{1000}, profiles);
    EXPECT_EQ(said("remote.timeline.memory"), "<b>Attic 60 percent, air 40 percent");
    EXPECT_THAT(legendTip().toStdString(), HasSubstr("&lt;b&gt;Attic: mini"));
    QToolTip::hideText();
}

TEST_F(RemoteTimelineCardTest, IsNotPaintedAgainWithoutANewPoint) {
    add(0, "air", 10, 40);
    add(900, "air", 12, 41);
    card.show(history, Date{1000});
    settle();
    PaintCount paints(card);
    card.show(history, Date{1004});
    settle();
    EXPECT_EQ(paints.take(), 0);
    add(1800, "air", 13, 42);
    card.show(history, Date{1804});
    settle();
    EXPECT_GT(paints.take(), 0);
}

}  // namespace
}  // namespace tallowcrest
