#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// The columns by which the owner can order the process list, in the order shown.
enum class ProcessColumn { process, cpu, memory, memoryPercent };

/// "Mem %"
QString title(ProcessColumn column);

/// An order that the owner chose; numbers begin with the highest and names with the first in the
/// alphabet, or both the other way round.
struct ProcessOrder {
    ProcessColumn column = ProcessColumn::cpu;
    bool isReversed = false;

    bool operator==(const ProcessOrder&) const = default;
};

/// The order after a click on a column's header. Absent is the order of the sample, by impact: the
/// first click on a column orders by it, the second reverses that, and the third ends it.
std::optional<ProcessOrder> orderAfterClick(const std::optional<ProcessOrder>& order,
                                            ProcessColumn clicked);

/// The arrow of a column's header: "↓" when the highest comes first. Empty for other columns.
QString orderArrow(const std::optional<ProcessOrder>& order, ProcessColumn column);

/// "Impact ↓", "CPU ↓", "Process ↑"
QString orderName(const std::optional<ProcessOrder>& order);

/// The rows, which are in impact order, in another order. Equal figures stay in impact order; rows
/// of the same name are in the order of their PIDs. Brackets around a name do not count. Main
/// thread.
std::vector<ProcessSample> orderedProcesses(std::vector<ProcessSample> rows,
                                            const std::optional<ProcessOrder>& order);

/// The rows of a new sample, so that no row on screen moves: those of `shown` in their places, with
/// their new figures, or the last ones when the process has ended, and then the new processes.
std::vector<ProcessSample> rowsInPlace(std::vector<ProcessSample> shown,
                                       const std::vector<ProcessSample>& fresh);

}  // namespace tallowcrest
