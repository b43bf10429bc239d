#include "presentation/screens/optimize/helper_processes.h"

#include <string>
#include <vector>

#include <QAbstractItemModelTester>
#include <QLocale>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include "sampling/app_impact.h"
#include "tests/presentation/screens/load/process_rows.h"
#include "tests/support/fake_machine.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::int64_t> pidsOf(const std::vector<ProcessSample>& rows) {
    std::vector<std::int64_t> pids;
    for (const ProcessSample& each : rows) {
        pids.push_back(each.pid);
    }
    return pids;
}

TEST(HelperProcesses, AreThoseOfTheGroupTheHeaviestFirst) {
    FakeMachine machine;
    machine.addProcess(1, "/opt/chrome helper", 1.0, 100.0);
    machine.addProcess(2, "/usr/bin/editor", 90.0, 100.0);
    machine.addProcess(3, "/opt/chrome", 40.0, 100.0);
    machine.addProcess(4, "/opt/chrome helper", 20.0, 100.0);
    machine.monitor().refresh();
    machine.finishSamples();
    const LatestSample& sample = machine.monitor().sample();
    EXPECT_THAT(pidsOf(helperProcesses(sample, "Google Chrome")), ElementsAre(3, 4, 1));
    EXPECT_THAT(pidsOf(helperProcesses(sample, "editor")), ElementsAre(2));
    EXPECT_THAT(pidsOf(helperProcesses(sample, "google chrome")), IsEmpty());
    EXPECT_THAT(pidsOf(helperProcesses(sample, "")), IsEmpty());
}

TEST(HelperProcesses, ThereAreNoneBeforeTheFirstSample) {
    FakeMachine machine;
    EXPECT_THAT(helperProcesses(machine.monitor().sample(), "editor"), IsEmpty());
}

class HelperProcessesModelTest : public testing::Test {
protected:
    HelperProcessesModelTest() { QLocale::setDefault(QLocale(u"en_US"_s)); }
    ~HelperProcessesModelTest() override { QLocale::setDefault(QLocale::c()); }

    QString text(int place, int column, int role = Qt::DisplayRole) {
        return model.index(place, column).data(role).toString();
    }

    HelperProcessesModel model{ProtectionPolicy{.ownPID = 4242, .protectsLinuxSystem = true}};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(HelperProcessesModelTest, CPUHasOneDecimalAndMemoryNone) {
    model.setRows({processRow(7, "/usr/bin/editor", 12.34, 2047.6)});
    EXPECT_EQ(text(0, ProcessTableModel::processColumn), u"editor"_s);
    EXPECT_EQ(text(0, ProcessTableModel::cpuColumn), u"12.3%"_s);
    EXPECT_EQ(text(0, ProcessTableModel::memoryColumn), u"2,048 MB"_s);
    EXPECT_EQ(text(0, ProcessTableModel::memoryColumn, Qt::AccessibleTextRole), u"2,048 MB"_s);
}

TEST_F(HelperProcessesModelTest, TheRestIsTheProcessTablesOwn) {
    model.setRows({processRow(7, "/usr/bin/editor", 1, 1)});
    const auto spoken = [this](int column) { return text(0, column, Qt::AccessibleTextRole); };
    EXPECT_EQ(spoken(ProcessTableModel::processColumn), u"editor"_s);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setProtectedAppNames({"editor"});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(model.index(0, 0).data(ProcessTableModel::isProtectedRole).toBool());
    model.setSelectedPID(7);
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(spoken(ProcessTableModel::processColumn), u"editor, Protected, Under review"_s);
    EXPECT_EQ(spoken(ProcessTableModel::actionColumn), u"Review editor"_s);
}

TEST_F(HelperProcessesModelTest, TheSameRowsChangeNothing) {
    const std::vector<ProcessSample> rows{processRow(7, "/usr/bin/editor", 1, 1)};
    model.setRows(rows);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setRows(rows);
    EXPECT_EQ(changes.count(), 0);
    model.setRows({processRow(7, "/usr/bin/editor", 2, 1)});
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(HelperProcessesModelTest, RowsStayWithTheirProcesses) {
    model.setRows(
        {processRow(1, "/a", 3, 1), processRow(2, "/b", 2, 1), processRow(3, "/c", 1, 1)});
    const QPersistentModelIndex second = model.index(1, 0);
    model.setRows(
        {processRow(3, "/c", 9, 1), processRow(4, "/d", 8, 1), processRow(2, "/b", 2, 1)});
    ASSERT_TRUE(second.isValid());
    EXPECT_EQ(second.row(), 2);
    EXPECT_EQ(second.data().toString(), u"b"_s);
    model.setRows({});
    EXPECT_FALSE(second.isValid());
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(HelperProcessesModelTest, NothingIsSaidOfRowsThatAreNotThere) {
    EXPECT_FALSE(model.data(QModelIndex(), ProcessTableModel::isProtectedRole).isValid());
    EXPECT_EQ(model.rowCount(), 0);
}

}  // namespace
}  // namespace tallowcrest
