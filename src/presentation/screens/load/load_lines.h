#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "core/date.h"
#include "presentation/words/process_order.h"

namespace tallowcrest {

/// The texts around the rows.
struct LoadLines {
    QString status;
    QString emptyDetail;  ///< shown in place of the rows when there are none
    QString description;  ///< of the table, for assistive technology
};

/// What the texts are about.
struct LoadFacts {
    std::optional<Date> sampledAt;           ///< absent before the first sample
    bool hasProcesses = false;               ///< whether the sample has any
    int shownRows = 0;                       ///< how many of them the filter keeps
    std::optional<ProcessOrder> order = {};  ///< absent for the order by impact
};

/// Main thread.
LoadLines loadLines(const LoadFacts& facts);

/// For each order a status with as many digits as any of that day with less than 10,000 processes,
/// to reserve its room. Main thread.
std::vector<QString> statusPatterns(Date day);

/// The title of a column, which is a button that orders the list.
struct ColumnTitle {
    QString text;         ///< "CPU ↓"
    QString spoken;       ///< the accessible name
    QString effect = {};  ///< what a click does
    bool isOrdered = false;
};

/// How many processes the filter keeps, for assistive technology: "12 of 87 processes", or only the
/// number when it keeps all.
QString foundWords(std::int64_t shown, std::int64_t all);

/// The order for assistive technology: "CPU, highest first".
QString orderWords(const std::optional<ProcessOrder>& order);

/// What every way back to the order by impact does.
QString impactOrderEffect();

ColumnTitle columnTitle(const std::optional<ProcessOrder>& order, ProcessColumn column);

}  // namespace tallowcrest
