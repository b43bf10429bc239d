#include <QAccessible>
#include <QScrollBar>
#include <QTextDocument>

#include "sampling/process_details.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/pids_of.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ProcessDetailsPageTest : public WindowFixture {
protected:
    ProcessDetailsPageTest() {
        machine.processDetails = std::make_shared<FakeProcessDetailsReader>();
        reader().facts[800] = {{"python3", "/opt/index.py", "--token", "x"}, "photos", "indexer"};
        for (std::int64_t pid = 2000; pid < 2400; ++pid) {
            machine.addProcess(pid, "/usr/bin/bash", 0.0, static_cast<double>(2400 - pid) / 1000);
            reader().facts[pid] = {{"bash"}, "", "bash"};
        }
        reader().facts[1] = reader().facts[700] = {{"x"}, "", "x"};
        reader().facts[2399] = {{"bash", "last.sh"}, "", "bash"};
        machine.metrics->processes[0].command = "/usr/bin/python3";
        window().resize(900, 600);
    }

    FakeProcessDetailsReader& reader() { return *machine.processDetails; }

    /// Runs the jobs that read details until there are no more.
    void readDetails() {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
            settle();
        }
    }
    QString note(int row) {
        return model().index(row, 0).data(ProcessTableModel::noteRole).toString();
    }
    void filter(const char* text) {
        window().state().navigation.setProcessFilter(text);
        settle();
    }
};

TEST_F(ProcessDetailsPageTest, OnlyTheRowsInViewAreRead) {
    showProcesses();
    EXPECT_EQ(note(0), u"800"_s);
    readDetails();
    EXPECT_EQ(note(0), u"800 · photos · index.py"_s);
    EXPECT_LT(reader().read.size(), 40U);
    const auto atFirst = reader().read.size();
    tick();
    readDetails();
    EXPECT_EQ(reader().read.size(), atFirst) << "the same rows are not read again";
    EXPECT_THAT(reader().read, Not(Contains(2399)));
    table().scrollToBottom();
    readDetails();
    EXPECT_EQ(note(402), u"2399 · last.sh"_s);
}

TEST_F(ProcessDetailsPageTest, NothingIsReadOnOtherPages) {
    showWithSample();
    for (const AppRoute each : allAppRoutes) {
        if (each != AppRoute::load) {
            goTo(each);
            tick();
            readDetails();
        }
    }
    EXPECT_THAT(reader().read, IsEmpty());
    goTo(AppRoute::load);
    readDetails();
    goTo(AppRoute::overview);
    const auto atFirst = reader().read.size();
    machine.addProcess(4000, "/usr/bin/new", 400.0, 1.0);
    tick();
    readDetails();
    EXPECT_EQ(reader().read.size(), atFirst);
}

TEST_F(ProcessDetailsPageTest, TheFilterFindsWhatTheDetailsSayOfAnyRow) {
    showProcesses();
    filter("LAST.sh");
    EXPECT_EQ(model().rowCount(), 0);
    readDetails();
    EXPECT_THAT(pids(model().rows()), ElementsAre(2399));
    EXPECT_TRUE(textOf("processes.sort-status").contains(u"1 visible processes"_s));
    filter("photos");
    EXPECT_THAT(pids(model().rows()), ElementsAre(800));
    filter("--token");
    EXPECT_THAT(pids(model().rows()), ElementsAre(800)) << "the tool tip tells it";
    filter("--token x");
    EXPECT_THAT(pids(model().rows()), IsEmpty());
}

TEST_F(ProcessDetailsPageTest, AFilterByADetailStaysWhenItsRowIsSelected) {
    showProcesses();
    filter("index.py");
    readDetails();
    click("processes.select-top-row");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(window().state().navigation.processFilter(), "index.py");
}

TEST_F(ProcessDetailsPageTest, AFilterByADetailStaysWhenARecommendationLeadsToItsRow) {
    showProcesses();
    filter("index.py");
    readDetails();
    goTo(AppRoute::overview);
    click("overview.recommendation-1.review");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(window().state().navigation.processFilter(), "index.py");
}

TEST_F(ProcessDetailsPageTest, AssistiveTechnologyHearsTheDetails) {
    showProcesses();
    readDetails();
    const QModelIndex index = model().index(0, 0);
    EXPECT_EQ(index.data(Qt::AccessibleTextRole).toString(),
              u"python3, PID 800, photos, index.py"_s);
    auto* cells = QAccessible::queryAccessibleInterface(&table())->tableInterface();
    EXPECT_EQ(cells->cellAt(0, 0)->text(QAccessible::Description),
              u"python3 /opt/index.py --token (hidden)"_s);
    EXPECT_EQ(cells->cellAt(0, 1)->text(QAccessible::Description), QString());
    QTextDocument tip;
    tip.setHtml(index.data(Qt::ToolTipRole).toString());
    EXPECT_EQ(tip.toPlainText(),
              u"PID 800 · photos\n/usr/bin/python3\npython3 /opt/index.py --token (hidden)"_s);
}

TEST_F(ProcessDetailsPageTest, AHungReaderDelaysNoSample) {
    showProcesses();
    ASSERT_GT(machine.workQueue.pendingCount(), 0U) << "details that are never read";
    const auto stuck = machine.workQueue.pendingCount();
    machine.metrics->processes[1].cpu = 500.0;
    machine.clock.advance(std::chrono::seconds(4));
    machine.monitor().refresh();
    ASSERT_EQ(machine.workQueue.laneOf(stuck), Lane::sampling);
    machine.workQueue.run(stuck);
    settle();
    EXPECT_EQ(model().rows().front().pid, 700);
    for (std::size_t i = 0; i < machine.workQueue.pendingCount(); ++i) {
        EXPECT_EQ(machine.workQueue.laneOf(i), Lane::details);
    }
}

}  // namespace
}  // namespace tallowcrest
