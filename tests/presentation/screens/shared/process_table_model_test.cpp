#include "presentation/screens/shared/process_table_model.h"

#include <algorithm>
#include <random>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include "presentation/screens/shared/process_table_view.h"
#include "presentation/widgets/text_lines.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/support/each_of.h"
#include "tests/support/pids_of.h"
#include "tests/support/process_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr ProtectionPolicy policy{.ownPID = 4242, .protectsLinuxSystem = true};

ProcessSample row(std::int64_t pid) {
    return processRow(pid, "/usr/bin/p" + std::to_string(pid));
}

std::vector<ProcessSample> rowsOf(const std::vector<std::int64_t>& pids) {
    return eachOf(pids, row);
}

std::vector<std::int64_t> pidsIn(const ProcessTableModel& model) {
    return pids(model.rows());
}

/// A model under `QAbstractItemModelTester`, which ends the test program at the first violation of
/// the rules for models.
class ProcessTableModelTest : public testing::Test {
protected:
    const ScopedLocale locale{"en_US"};

    QVariant at(int line, int column, int role = Qt::DisplayRole) const {
        return model.data(model.index(line, column), role);
    }

    ProcessTableModel model{policy};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

// Rows -------------------------------------------------------------------------------------------

TEST_F(ProcessTableModelTest, IsEmptyAtFirst) {
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(model.columnCount(), 5);
    model.setRows({});
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(ProcessTableModelTest, RowsHaveTheGivenOrder) {
    model.setRows(rowsOf({30, 10, 20}));
    EXPECT_THAT(pidsIn(model), ElementsAre(30, 10, 20));
    model.setRows(rowsOf({20, 40, 30}));
    EXPECT_THAT(pidsIn(model), ElementsAre(20, 40, 30));
    model.setRows({});
    EXPECT_THAT(pidsIn(model), IsEmpty());
}

TEST_F(ProcessTableModelTest, ARepeatedPIDIsOneRow) {
    model.setRows({processRow(5, "/bin/first"), row(6), processRow(5, "/bin/second")});
    EXPECT_THAT(pidsIn(model), ElementsAre(5, 6));
    EXPECT_EQ(at(0, ProcessTableModel::processColumn), u"first"_s);
    model.setRows({row(6), row(5), row(6), row(6)});
    EXPECT_THAT(pidsIn(model), ElementsAre(6, 5));
}

TEST_F(ProcessTableModelTest, FiguresAreReplacedInPlace) {
    model.setRows({processRow(5, {}, 1.0), processRow(6, {}, 2.0)});
    const QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    const QSignalSpy insertions(&model, &QAbstractItemModel::rowsInserted);
    const QSignalSpy removals(&model, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy layouts(&model, &QAbstractItemModel::layoutChanged);
    const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setRows({processRow(5, {}, 3.0), processRow(6, {}, 4.0)});
    EXPECT_EQ(at(1, ProcessTableModel::cpuColumn), u"4.0%"_s);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(resets.count() + insertions.count() + removals.count() + layouts.count(), 0);
}

TEST_F(ProcessTableModelTest, OnlyRowsWithNewFiguresAreAnnounced) {
    model.setRows(rowsOf({1, 2, 3, 4, 5}));
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setRows(rowsOf({1, 2, 3, 4, 5}));
    EXPECT_EQ(changes.count(), 0);
    std::vector<ProcessSample> rows = rowsOf({1, 2, 3, 4, 5});
    for (const std::size_t busy : {1U, 2U, 4U}) {
        rows[busy].cpu = 5.0;
    }
    model.setRows(rows);
    ASSERT_EQ(changes.count(), 2);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(changes[0][1].toModelIndex().row(), 2);
    EXPECT_EQ(changes[1][0].toModelIndex().row(), 4);
    EXPECT_EQ(changes[1][1].toModelIndex().row(), 4);
}

/// New, ended, moved and repeated processes in random sequences with fixed seeds.
class ProcessTableModelAtRandom : public testing::TestWithParam<unsigned> {};

TEST_P(ProcessTableModelAtRandom, EveryIndexStaysWithItsProcess) {
    std::minstd_rand random(GetParam());
    const auto upTo = [&random](std::size_t end) {
        return static_cast<std::size_t>(random()) % end;
    };
    ProcessTableModel model(policy);
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::vector<std::int64_t> pids;
    std::int64_t nextPID = 1;
    struct Kept {
        QPersistentModelIndex index;
        std::int64_t pid;
        int column;
    };
    std::vector<Kept> kept;
    for (int sample = 0; sample < 120; ++sample) {
        switch (upTo(6)) {
            case 0:
                pids.clear();
                break;
            case 1:
                std::shuffle(pids.begin(), pids.end(), random);
                break;
            case 2:
                std::erase_if(pids, [&](std::int64_t) { return upTo(3) == 0; });
                break;
            case 3:
                if (!pids.empty()) {
                    pids.push_back(pids[upTo(pids.size())]);
                }
                break;
            default:
                for (std::size_t births = upTo(8); births > 0; --births) {
                    const auto place = static_cast<std::ptrdiff_t>(upTo(pids.size() + 1));
                    pids.insert(pids.begin() + place, nextPID++);
                }
                break;
        }
        model.setRows(rowsOf(pids));

        std::vector<std::int64_t> expected;
        for (const std::int64_t pid : pids) {
            if (std::find(expected.begin(), expected.end(), pid) == expected.end()) {
                expected.push_back(pid);
            }
        }
        ASSERT_EQ(pidsIn(model), expected) << "sample " << sample;
        for (const Kept& each : kept) {
            const auto place = std::find(expected.begin(), expected.end(), each.pid);
            ASSERT_EQ(each.index.isValid(), place != expected.end());
            if (each.index.isValid()) {
                ASSERT_EQ(each.index.row(), place - expected.begin());
                ASSERT_EQ(each.index.column(), each.column);
            }
        }
        std::erase_if(kept, [](const Kept& each) { return !each.index.isValid(); });
        if (!expected.empty()) {
            const auto line = static_cast<int>(upTo(expected.size()));
            const auto column = static_cast<int>(upTo(ProcessTableModel::columnTotal));
            kept.push_back(
                {model.index(line, column), expected[static_cast<std::size_t>(line)], column});
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ProcessTableModelAtRandom, testing::Range(1U, 13U));

// Cells ------------------------------------------------------------------------------------------

TEST_F(ProcessTableModelTest, CellsGiveNameFiguresAndAction) {
    ProcessSample sample = processRow(77, "/opt/app/bin/Worker", 123.45);
    sample.rssMB = 2048.04;
    sample.memoryPercent = 12.5;
    model.setRows({sample});
    EXPECT_EQ(at(0, ProcessTableModel::processColumn), u"Worker"_s);
    EXPECT_EQ(at(0, ProcessTableModel::cpuColumn), u"123.5%"_s);
    EXPECT_EQ(at(0, ProcessTableModel::memoryColumn), u"2,048.0 MB"_s);
    EXPECT_EQ(at(0, ProcessTableModel::memoryPercentColumn), u"12.5%"_s);
    EXPECT_EQ(at(0, ProcessTableModel::actionColumn), u"Review"_s);
    const ScopedLocale german("de_DE");
    EXPECT_EQ(at(0, ProcessTableModel::memoryColumn), u"2.048,0 MB"_s);
}

TEST_F(ProcessTableModelTest, MemoryCanBeShownInWholeMegabytes) {
    model.setMemoryDecimals(0);
    model.setRows({processRow(7, "/usr/bin/editor", 12.34, 2047.6)});
    EXPECT_EQ(at(0, ProcessTableModel::cpuColumn), u"12.3%"_s);
    EXPECT_EQ(at(0, ProcessTableModel::memoryColumn), u"2,048 MB"_s);
    EXPECT_EQ(at(0, ProcessTableModel::memoryColumn, Qt::AccessibleTextRole), u"Memory 2,048 MB"_s);
}

TEST_F(ProcessTableModelTest, HeadersNameTheColumns) {
    QStringList names;
    for (int column = 0; column < model.columnCount(); ++column) {
        names.append(model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    }
    EXPECT_EQ(names, QStringList({u"Process"_s, u"CPU"_s, u"Memory"_s, u"Mem %"_s, u"Action"_s}));
    EXPECT_FALSE(model.headerData(5, Qt::Horizontal, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.headerData(-1, Qt::Horizontal, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.headerData(0, Qt::Vertical, Qt::DisplayRole).isValid());
}

TEST_F(ProcessTableModelTest, CellsAreAlignedLikeTheirHeaders) {
    model.setRows(rowsOf({1}));
    for (int column = 0; column < model.columnCount(); ++column) {
        EXPECT_EQ(at(0, column, Qt::TextAlignmentRole),
                  model.headerData(column, Qt::Horizontal, Qt::TextAlignmentRole))
            << column;
    }
}

TEST_F(ProcessTableModelTest, ProtectedProcessesAreMarkedAlsoInTheAccessibleText) {
    model.setRows({processRow(1, "/usr/lib/systemd/systemd"), processRow(2, "[kthreadd]"),
                   processRow(4242, "/usr/bin/tallowcrest"), processRow(90, "/usr/bin/editor")});
    const auto isProtectedAt = [this](int line) {
        return at(line, 0, ProcessTableModel::isProtectedRole).toBool();
    };
    EXPECT_TRUE(isProtectedAt(0));
    EXPECT_TRUE(isProtectedAt(1));
    EXPECT_TRUE(isProtectedAt(2));
    EXPECT_FALSE(isProtectedAt(3));
    EXPECT_EQ(at(0, 0, Qt::AccessibleTextRole), u"systemd, PID 1, Protected"_s);
    EXPECT_EQ(at(3, 0, Qt::AccessibleTextRole), u"editor, PID 90"_s);
    const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setProtectedAppNames({"editor"});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(isProtectedAt(3));
    EXPECT_EQ(at(3, 0, Qt::AccessibleTextRole), u"editor, PID 90, Protected"_s);
}

TEST_F(ProcessTableModelTest, TheRowUnderReviewIsMarkedAlsoInTheAccessibleText) {
    model.setRows({processRow(1, "/usr/lib/systemd/systemd"), processRow(90, "/usr/bin/editor")});
    const auto isSelectedAt = [this](int line) {
        return at(line, 2, ProcessTableModel::isSelectedRole).toBool();
    };
    EXPECT_FALSE(isSelectedAt(0) || isSelectedAt(1));
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.setSelectedPID(90);
    EXPECT_TRUE(isSelectedAt(1));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(at(1, 0, Qt::AccessibleTextRole), u"editor, PID 90, Under review"_s);
    model.setSelectedPID(90);
    EXPECT_EQ(changes.count(), 1) << "nothing changed";
    model.setSelectedPID(1);
    EXPECT_TRUE(isSelectedAt(0));
    EXPECT_FALSE(isSelectedAt(1));
    EXPECT_EQ(changes.count(), 3);
    EXPECT_EQ(at(0, 0, Qt::AccessibleTextRole), u"systemd, PID 1, Protected, Under review"_s);
    model.setSelectedPID(std::nullopt);
    EXPECT_FALSE(isSelectedAt(0) || isSelectedAt(1));
    model.setSelectedPID(12345);
    EXPECT_FALSE(isSelectedAt(0) || isSelectedAt(1));
}

TEST_F(ProcessTableModelTest, AProcessUnderReviewIsMarkedWhenItAppears) {
    model.setSelectedPID(7);
    model.setRows(rowsOf({6, 7}));
    EXPECT_TRUE(at(1, 0, ProcessTableModel::isSelectedRole).toBool());
    model.setRows(rowsOf({7, 6}));
    EXPECT_TRUE(at(0, 0, ProcessTableModel::isSelectedRole).toBool());
    EXPECT_FALSE(at(1, 0, ProcessTableModel::isSelectedRole).toBool());
}

TEST_F(ProcessTableModelTest, TheAccessibleActionNamesItsProcess) {
    model.setRows({processRow(90, "/usr/bin/editor")});
    EXPECT_EQ(at(0, ProcessTableModel::actionColumn, Qt::AccessibleTextRole), u"Review editor"_s);
    EXPECT_EQ(at(0, ProcessTableModel::cpuColumn, Qt::AccessibleTextRole), u"CPU 0.0%"_s);
    EXPECT_EQ(at(0, ProcessTableModel::memoryPercentColumn, Qt::AccessibleTextRole),
              u"0.0% of memory"_s);
}

TEST_F(ProcessTableModelTest, DetailsTellRowsOfTheSameNameApart) {
    const ProcessDetail detail{
        .owner = "root", .shortName = "bash", .argument = "a.sh", .commandLine = "bash a.sh -v"};
    model.setRows({processRow(90, "/bin/bash"), processRow(91, "/bin/bash")});
    EXPECT_EQ(at(0, 0, ProcessTableModel::noteRole), u"90"_s);
    model.setDetails([&detail](const ProcessSample& row) -> const ProcessDetail* {
        return row.pid == 91 ? &detail : nullptr;
    });
    const QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.showDetails();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(at(0, 0, ProcessTableModel::noteRole), u"90"_s);
    EXPECT_EQ(at(1, 0, ProcessTableModel::noteRole), u"91 · root · a.sh"_s);
    EXPECT_EQ(at(1, 0, Qt::AccessibleTextRole), u"bash, PID 91, root, a.sh"_s);
    EXPECT_EQ(at(1, 0, Qt::ToolTipRole), toolTipText(u"PID 91 · root\n/bin/bash\nbash a.sh -v"_s));
}

TEST_F(ProcessTableModelTest, ToolTipsShowNamesLiterally) {
    model.setRows({processRow(90, "/tmp/<img src=x>&amp;")});
    EXPECT_EQ(at(0, 0, Qt::ToolTipRole), toolTipText(u"PID 90\n/tmp/<img src=x>&amp;"_s));
    EXPECT_FALSE(at(0, 1, Qt::ToolTipRole).isValid());
    model.setRows({processRow(90, "/tmp/%1 %2 %3")});
    EXPECT_EQ(at(0, 0, Qt::ToolTipRole), toolTipText(u"PID 90\n/tmp/%1 %2 %3"_s));
}

TEST_F(ProcessTableModelTest, InvalidIndexesHaveNoData) {
    model.setRows(rowsOf({1}));
    EXPECT_FALSE(model.data({}, Qt::DisplayRole).isValid());
    EXPECT_FALSE(model.data({}, ProcessTableModel::isProtectedRole).isValid());
    EXPECT_FALSE(model.data(model.index(1, 0), Qt::DisplayRole).isValid());
    EXPECT_FALSE(at(0, 0, Qt::DecorationRole).isValid());
    EXPECT_EQ(model.rowCount(model.index(0, 0)), 0);
    EXPECT_EQ(model.columnCount(model.index(0, 0)), 0);
}

// In a view --------------------------------------------------------------------------------------

class ProcessTableInViewTest : public ProcessTableModelTest {
protected:
    ProcessTableInViewTest() {
        view.setModel(&model);
        view.resize(600, 200);
        view.setAttribute(Qt::WA_DontShowOnScreen);
        for (std::int64_t pid = 1; pid <= 100; ++pid) {
            pids.push_back(pid);
        }
        model.setRows(rowsOf(pids));
        view.show();
        QApplication::processEvents();
    }

    std::int64_t currentPID() const {
        const QModelIndex current = view.currentIndex();
        return current.isValid() ? model.rows()[static_cast<std::size_t>(current.row())].pid : 0;
    }

    std::vector<std::int64_t> pids;
    ProcessTableView view;
};

TEST_F(ProcessTableInViewTest, CurrentRowAndScrollPositionSurviveANewOrder) {
    view.setCurrentIndex(model.index(2, 0));
    view.verticalScrollBar()->setValue(700);
    ASSERT_EQ(view.verticalScrollBar()->value(), 700);
    std::reverse(pids.begin(), pids.end());
    model.setRows(rowsOf(pids));
    QApplication::processEvents();
    EXPECT_EQ(currentPID(), 3);
    EXPECT_EQ(view.currentIndex().row(), 97);
    EXPECT_EQ(view.verticalScrollBar()->value(), 700);
}

TEST_F(ProcessTableInViewTest, CurrentRowAndScrollPositionSurviveNewAndEndedProcesses) {
    view.setCurrentIndex(model.index(50, 1));
    view.verticalScrollBar()->setValue(900);
    pids.insert(pids.begin(), {501, 502, 503});
    std::erase_if(pids, [](std::int64_t pid) { return pid % 10 == 0; });
    model.setRows(rowsOf(pids));
    QApplication::processEvents();
    EXPECT_EQ(currentPID(), 51);
    EXPECT_EQ(view.currentIndex().column(), 1);
    EXPECT_EQ(view.verticalScrollBar()->value(), 900);
}

TEST_F(ProcessTableInViewTest, ToleratesFilteringToFewRowsAndBack) {
    view.setCurrentIndex(model.index(50, 0));
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    model.setRows(rowsOf({3}));
    QApplication::processEvents();
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_THAT(currentPID(), testing::AnyOf(0, 3));
    model.setRows(rowsOf(pids));
    QApplication::processEvents();
    EXPECT_EQ(model.rowCount(), 100);
}

}  // namespace
}  // namespace tallowcrest
