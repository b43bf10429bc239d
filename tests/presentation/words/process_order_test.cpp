#include "presentation/words/process_order.h"

#include <gmock/gmock.h>

#include "tests/support/pids_of.h"
#include "tests/support/process_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::optional<ProcessOrder> byImpact;
constexpr std::optional byName = ProcessOrder{ProcessColumn::process};
constexpr std::optional byCPU = ProcessOrder{ProcessColumn::cpu};
constexpr std::optional byMemory = ProcessOrder{ProcessColumn::memory};

std::optional<ProcessOrder> reversed(std::optional<ProcessOrder> order) {
    order->isReversed = !order->isReversed;
    return order;
}

/// In impact order.
std::vector<ProcessSample> orderedRows() {
    std::vector<ProcessSample> rows{
        processRow(5, "/bin/bash", 2.0, 10.0), processRow(9, "/bin/Äpfel", 1.5, 900.0),
        processRow(3, "/bin/bash", 0.5, 10.0), processRow(7, "/bin/ZSH", 0.5, 20.0)};
    rows[0].memoryPercent = 1.0;
    rows[2].memoryPercent = 2.0;
    return rows;
}

std::vector<std::int64_t> pidsInOrder(const std::optional<ProcessOrder>& order) {
    return pids(orderedProcesses(orderedRows(), order));
}

TEST(ProcessOrder, ImpactIsTheOrderOfTheSample) {
    EXPECT_THAT(pidsInOrder(byImpact), ElementsAre(5, 9, 3, 7));
    EXPECT_THAT(orderedProcesses({}, byName), IsEmpty());
}

TEST(ProcessOrder, NumbersBeginWithTheHighestAndEqualOnesStayInImpactOrder) {
    EXPECT_THAT(pidsInOrder(byCPU), ElementsAre(5, 9, 3, 7));
    EXPECT_THAT(pidsInOrder(reversed(byCPU)), ElementsAre(3, 7, 9, 5));
    EXPECT_THAT(pidsInOrder(byMemory), ElementsAre(9, 7, 5, 3));
    EXPECT_THAT(pidsInOrder(reversed(byMemory)), ElementsAre(5, 3, 7, 9));
    EXPECT_THAT(pidsInOrder(ProcessOrder{ProcessColumn::memoryPercent}), ElementsAre(3, 5, 9, 7));
}

TEST(ProcessOrder, NamesBeginWithAInAnyCaseAndEqualOnesAreInTheOrderOfTheirPIDs) {
    EXPECT_THAT(pidsInOrder(byName), ElementsAre(3, 5, 7, 9));
    EXPECT_THAT(pidsInOrder(reversed(byName)), ElementsAre(9, 7, 5, 3));
    EXPECT_THAT(pids(orderedProcesses({processRow(1, "[kworker/0:1]"), processRow(2, "/bin/kate"),
                                       processRow(3, "/bin/less")},
                                      byName)),
                ElementsAre(2, 1, 3))
        << "brackets do not count";
}

TEST(ProcessOrder, TheThirdClickOnAColumnReturnsToImpact) {
    EXPECT_EQ(orderAfterClick(byImpact, ProcessColumn::cpu), byCPU);
    EXPECT_EQ(orderAfterClick(byCPU, ProcessColumn::cpu), reversed(byCPU));
    EXPECT_EQ(orderAfterClick(reversed(byCPU), ProcessColumn::cpu), byImpact);
    EXPECT_EQ(orderAfterClick(reversed(byCPU), ProcessColumn::memory), byMemory);
}

TEST(ProcessOrder, IsNamedWithAnArrow) {
    EXPECT_EQ(orderName(byImpact), u"Impact ↓"_s);
    EXPECT_EQ(orderName(byCPU), u"CPU ↓"_s);
    EXPECT_EQ(orderName(reversed(byCPU)), u"CPU ↑"_s);
    EXPECT_EQ(orderName(byName), u"Process ↑"_s);
    EXPECT_EQ(orderName(reversed(byName)), u"Process ↓"_s);
    EXPECT_EQ(orderName(ProcessOrder{ProcessColumn::memoryPercent}), u"Mem % ↓"_s);
    EXPECT_EQ(orderArrow(byCPU, ProcessColumn::memory), QString());
    EXPECT_EQ(orderArrow(byImpact, ProcessColumn::cpu), QString());
}

TEST(ProcessOrder, RowsInPlaceMoveNone) {
    const std::vector<ProcessSample> shown{processRow(1, "/bin/a", 9.0), processRow(2, "/bin/b"),
                                           processRow(3, "/bin/c", 1.0)};
    const std::vector<ProcessSample> rows = rowsInPlace(
        shown,
        {processRow(4, "/bin/new", 50.0), processRow(3, "/bin/c", 8.0), processRow(1, "/bin/a")});
    EXPECT_THAT(pids(rows), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(rows[0].cpu, 0.0);
    EXPECT_EQ(rows[1], shown[1]) << "an ended process stays as it was";
    EXPECT_EQ(rows[2].cpu, 8.0);
    EXPECT_THAT(rowsInPlace({}, {}), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest
